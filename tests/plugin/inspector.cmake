# The plug-in hides its symbols: the tests of inspector controls are built from their sources.
set(widgets ${PROJECT_SOURCE_DIR}/widgets)
marlox_test(slider_model_test
    SOURCES ${CMAKE_CURRENT_LIST_DIR}/slider_model_test.cpp
        ${widgets}/SliderDrag.cpp ${widgets}/SliderModel.cpp ${widgets}/SliderScale.cpp)
marlox_test(choice_model_test
    SOURCES ${CMAKE_CURRENT_LIST_DIR}/choice_model_test.cpp
        ${widgets}/ComboList.cpp ${widgets}/ComboModel.cpp)

# The controls with their widgets, and the page that their tests put them on.
file(GLOB staged CONFIGURE_DEPENDS ${widgets}/*.cpp ${widgets}/*.h)
foreach(control CheckBoxControl ComboControl LabelControl SliderControl)
    file(GLOB sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/controls/inspector/${control}*)
    list(APPEND staged ${sources})
endforeach()
file(GLOB colors CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/controls/color/*)
list(APPEND staged ${colors})
file(GLOB framework CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/framework/*.cpp
    ${PROJECT_SOURCE_DIR}/framework/*.h)
add_library(inspector_parts OBJECT ${staged} ${framework}
    ${PROJECT_SOURCE_DIR}/tests/host/controls/Probe.cpp
    ${PROJECT_SOURCE_DIR}/tests/host/controls/Probe.h
    ${CMAKE_CURRENT_LIST_DIR}/InspectorStage.cpp
    ${CMAKE_CURRENT_LIST_DIR}/InspectorStage.h)
marlox_target(inspector_parts)
target_include_directories(inspector_parts PRIVATE ${PROJECT_SOURCE_DIR}/tests)
target_link_libraries(inspector_parts PUBLIC marloxscript Qt5::Test)
foreach(name checkbox_control_test combo_control_test label_control_test slider_control_test
        slider_random_test slider_widget_test)
    marlox_test(${name} SOURCES ${CMAKE_CURRENT_LIST_DIR}/${name}.cpp
        LIBS inspector_parts marloxscript)
endforeach()
