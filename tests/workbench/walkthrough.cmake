# The walkthrough of ./run, on a real window system: the one test that is not on Qt's offscreen
# platform.
set(pictures ${CMAKE_BINARY_DIR}/tests/walkthrough)
file(MAKE_DIRECTORY ${pictures})
marlox_script_test(workbench-walkthrough
    ${PROJECT_SOURCE_DIR}/workbench/scripting/walkthrough.lua
    ${CMAKE_BINARY_DIR}/samples/dusk.marlox ${pictures})
set_property(TEST workbench-walkthrough APPEND PROPERTY ENVIRONMENT QT_QPA_PLATFORM=xcb)
