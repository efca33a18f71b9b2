# Shapes of many points: what is under the pointer, and drawing.
marlox_bench(shapes-bench SOURCES ${CMAKE_CURRENT_LIST_DIR}/shapes_bench.cpp
    LIBS Qt5::Widgets OpenGL::GL)
