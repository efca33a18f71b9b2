# The drawn slider, from its sources: the control library hides its symbols.
file(GLOB slider_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/widgets/*.cpp
    ${PROJECT_SOURCE_DIR}/widgets/*.h)
marlox_bench(slider-bench SOURCES ${CMAKE_CURRENT_LIST_DIR}/slider_bench.cpp ${slider_sources}
    LIBS marloxscript Qt5::Widgets)
