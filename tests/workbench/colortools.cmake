marlox_test(workbench-color-tools SOURCES ColorToolsTest.cpp ToolBench.h TestPictures.h
    LIBS workbench-core)
