# The polyline overlay, with the control library loaded as a host loads it.
marlox_bench(polyline-bench SOURCES ${CMAKE_CURRENT_LIST_DIR}/polyline_bench.cpp
    LIBS marloxscript Qt5::Widgets OpenGL::GL ${CMAKE_DL_LIBS})
add_dependencies(polyline-bench marloxcontrols)
