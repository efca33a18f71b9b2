marlox_test(workbench-mask-raster SOURCES MaskRasterTest.cpp LIBS workbench-core)
marlox_test(workbench-mask-tools SOURCES MaskToolsTest.cpp ToolBench.h TestPictures.h
    LIBS workbench-core)
