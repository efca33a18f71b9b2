# The drawn wheels and ranges, from their sources: the control library hides its symbols.
file(GLOB wheels_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/widgets/*.cpp
    ${PROJECT_SOURCE_DIR}/widgets/*.h)
marlox_bench(wheels-bench SOURCES ${CMAKE_CURRENT_LIST_DIR}/wheels_bench.cpp ${wheels_sources}
    LIBS marloxscript Qt5::Widgets)
