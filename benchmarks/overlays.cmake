# Viewer overlays, with the control library loaded as a host loads it.
marlox_bench(overlays-bench SOURCES ${CMAKE_CURRENT_LIST_DIR}/overlays_bench.cpp
    LIBS marloxscript Qt5::Widgets OpenGL::GL ${CMAKE_DL_LIBS})
add_dependencies(overlays-bench marloxcontrols)
