# The plug-in hides its symbols: these tests are built from its sources.
set(slider_model
    ${PROJECT_SOURCE_DIR}/widgets/SliderDrag.cpp
    ${PROJECT_SOURCE_DIR}/widgets/SliderModel.cpp
    ${PROJECT_SOURCE_DIR}/widgets/SliderScale.cpp)

marlox_test(slider_model_test
    SOURCES ${CMAKE_CURRENT_LIST_DIR}/slider_model_test.cpp ${slider_model})
