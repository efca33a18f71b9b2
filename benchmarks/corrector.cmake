# The colour corrector, beside copying the picture.
if(MARLOX_WORKBENCH)
    marlox_bench(corrector-bench SOURCES ${CMAKE_CURRENT_LIST_DIR}/corrector_bench.cpp
        LIBS workbench-core)
endif()
