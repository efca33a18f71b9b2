# A drag in the workbench's viewer, with the control library loaded as a host loads it.
if(MARLOX_WORKBENCH)
    marlox_bench(drag-bench SOURCES ${CMAKE_CURRENT_LIST_DIR}/drag_bench.cpp
        LIBS workbench-core ${CMAKE_DL_LIBS})
    add_dependencies(drag-bench marloxcontrols)
endif()
