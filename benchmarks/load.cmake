# The control library against one that needs the same libraries and does nothing.
add_library(bench-empty-library MODULE ${CMAKE_CURRENT_LIST_DIR}/empty_library.cpp)
marlox_target(bench-empty-library)
# Exactly those that the control library's file names as needed: each costs time of its own.
target_link_options(bench-empty-library PRIVATE -Wl,-z,now -Wl,--no-as-needed)
target_link_libraries(bench-empty-library PRIVATE marloxscript marloxsystem Qt5::Core Qt5::Gui
    Qt5::Widgets)
set_target_properties(bench-empty-library PROPERTIES PREFIX ""
    LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/benchmarks)

marlox_bench(load-bench SOURCES ${CMAKE_CURRENT_LIST_DIR}/load_bench.cpp
    LIBS marloxscript ${CMAKE_DL_LIBS})
add_dependencies(load-bench bench-empty-library marloxcontrols)
