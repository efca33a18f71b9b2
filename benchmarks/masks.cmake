# Masks, beside Qt's painter filling the same path.
if(MARLOX_WORKBENCH)
    marlox_bench(masks-bench SOURCES ${CMAKE_CURRENT_LIST_DIR}/masks_bench.cpp LIBS workbench-core)
endif()
