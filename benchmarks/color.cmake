# The drawn colour widgets, from their sources: the control library hides its symbols.
file(GLOB color_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/widgets/*.cpp
    ${PROJECT_SOURCE_DIR}/widgets/*.h)
marlox_bench(color-bench SOURCES ${CMAKE_CURRENT_LIST_DIR}/color_bench.cpp ${color_sources}
    LIBS marloxscript Qt5::Widgets)
