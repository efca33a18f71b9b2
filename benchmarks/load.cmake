# The control library against libraries that need the same others: one that does nothing, one with
# as many classes that do nothing, and itself without what it runs while it is loaded.
function(marlox_load_peer name)
    add_library(${name} MODULE ${ARGN})
    marlox_target(${name})
    set_target_properties(${name} PROPERTIES PREFIX ""
        LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/benchmarks)
endfunction()

set(here ${CMAKE_CURRENT_LIST_DIR})
marlox_load_peer(bench-empty-library ${here}/empty_library.cpp)
marlox_load_peer(bench-classes ${here}/load_classes.cpp)
foreach(peer bench-empty-library bench-classes)
    # Exactly those that the control library's file names as needed: each costs time of its own.
    target_link_options(${peer} PRIVATE -Wl,-z,now -Wl,--no-as-needed)
    target_link_libraries(${peer} PRIVATE marloxscript marloxsystem Qt5::Core Qt5::Gui
        Qt5::Widgets)
endforeach()
marlox_load_peer(bench-unregistered $<TARGET_OBJECTS:marloxcontrols>)
target_link_options(bench-unregistered PRIVATE
    $<TARGET_PROPERTY:marloxcontrols,LINK_OPTIONS> -Wl,-T,${here}/no_initialisers.ld)
target_link_libraries(bench-unregistered PRIVATE
    $<TARGET_PROPERTY:marloxcontrols,LINK_LIBRARIES>)

marlox_bench(load-bench SOURCES ${here}/load_bench.cpp LIBS marloxscript ${CMAKE_DL_LIBS})
add_dependencies(load-bench bench-empty-library bench-classes bench-unregistered marloxcontrols)
