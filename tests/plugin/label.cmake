# The label control is tested from its sources, beside sliders, whose rows a nest folds.
set(label ${PROJECT_SOURCE_DIR}/controls/inspector/LabelControl)
marlox_test(label_control_test
    SOURCES ${CMAKE_CURRENT_LIST_DIR}/label_control_test.cpp ${label}.cpp ${label}.h
        ${label}Access.cpp ${label}Access.h ${label}Nest.cpp ${PROJECT_SOURCE_DIR}/framework/OneInputControl.cpp
    LIBS slider_parts marloxscript)
