# The plug-in hides its symbols: the tests are built from its sources. (slider_parts has the widgets.)
marlox_test(choice_model_test
    SOURCES ${CMAKE_CURRENT_LIST_DIR}/choice_model_test.cpp
        ${PROJECT_SOURCE_DIR}/widgets/ComboList.cpp
        ${PROJECT_SOURCE_DIR}/widgets/ComboModel.cpp)
marlox_test(choice_control_test
    SOURCES ${CMAKE_CURRENT_LIST_DIR}/choice_control_test.cpp
        ${PROJECT_SOURCE_DIR}/controls/inspector/CheckBoxControl.cpp
        ${PROJECT_SOURCE_DIR}/controls/inspector/CheckBoxControl.h
        ${PROJECT_SOURCE_DIR}/controls/inspector/ComboControl.cpp
        ${PROJECT_SOURCE_DIR}/controls/inspector/ComboControl.h
        ${PROJECT_SOURCE_DIR}/framework/OneInputControl.cpp
    LIBS slider_parts marloxscript)
