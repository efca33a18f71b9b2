# Inspector pages, with the control library loaded as a host loads it.
marlox_bench(inspector-bench SOURCES ${CMAKE_CURRENT_LIST_DIR}/inspector_bench.cpp
    LIBS marloxscript Qt5::Widgets ${CMAKE_DL_LIBS})
add_dependencies(inspector-bench marloxcontrols)
