# The plug-in hides its symbols: the slider's tests are built from its sources.
set(slider_model
    ${PROJECT_SOURCE_DIR}/widgets/SliderDrag.cpp
    ${PROJECT_SOURCE_DIR}/widgets/SliderModel.cpp
    ${PROJECT_SOURCE_DIR}/widgets/SliderScale.cpp)
marlox_test(slider_model_test
    SOURCES ${CMAKE_CURRENT_LIST_DIR}/slider_model_test.cpp ${slider_model})

file(GLOB slider_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/widgets/*.cpp
    ${PROJECT_SOURCE_DIR}/widgets/*.h)
add_library(slider_parts OBJECT ${slider_sources}
    ${PROJECT_SOURCE_DIR}/controls/inspector/SliderControl.cpp
    ${PROJECT_SOURCE_DIR}/controls/inspector/SliderControl.h
    ${PROJECT_SOURCE_DIR}/controls/inspector/SliderControlLook.cpp
    ${PROJECT_SOURCE_DIR}/framework/BuildStamp.cpp
    ${PROJECT_SOURCE_DIR}/framework/ControlClass.cpp
    ${PROJECT_SOURCE_DIR}/tests/host/controls/Probe.cpp
    ${PROJECT_SOURCE_DIR}/tests/host/controls/Probe.h
    ${CMAKE_CURRENT_LIST_DIR}/SliderStage.cpp
    ${CMAKE_CURRENT_LIST_DIR}/SliderStage.h)
marlox_target(slider_parts)
target_include_directories(slider_parts PRIVATE ${PROJECT_SOURCE_DIR}/tests)
target_link_libraries(slider_parts PUBLIC marloxscript Qt5::Test)
marlox_test(slider_widget_test
    SOURCES ${CMAKE_CURRENT_LIST_DIR}/slider_widget_test.cpp LIBS slider_parts marloxscript)
marlox_test(slider_control_test
    SOURCES ${CMAKE_CURRENT_LIST_DIR}/slider_control_test.cpp LIBS slider_parts marloxscript)
