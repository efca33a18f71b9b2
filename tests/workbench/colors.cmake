marlox_test(workbench-colors SOURCES ColorsTest.cpp ToolBench.h TestPictures.h LIBS workbench-core)

# Picks by mouse and keys, on a usual and on a dense screen.
foreach(scale 1 2)
    set(name workbench-picks-${scale}x)
    marlox_script_test(${name} ${CMAKE_CURRENT_SOURCE_DIR}/scripting/picks.lua
        ${CMAKE_BINARY_DIR}/samples/dusk.marlox ${CMAKE_BINARY_DIR}/samples/dusk.marlox)
    marlox_test_environment(${name} QT_SCALE_FACTOR=${scale})
endforeach()

# Random events; the seeds are the scales.
foreach(scale 1 2)
    set(name workbench-color-soak-${scale}x)
    marlox_script_test(${name} ${CMAKE_CURRENT_SOURCE_DIR}/scripting/colorsoak.lua
        ${CMAKE_BINARY_DIR}/samples/dusk.marlox ${scale})
    marlox_test_environment(${name} QT_SCALE_FACTOR=${scale})
endforeach()

# The drawn widgets by mouse.
foreach(scale 1 2)
    set(name workbench-color-widgets-${scale}x)
    marlox_script_test(${name} ${CMAKE_CURRENT_SOURCE_DIR}/scripting/colorwidgets.lua
        ${CMAKE_BINARY_DIR}/samples/dusk.marlox)
    marlox_test_environment(${name} QT_SCALE_FACTOR=${scale})
endforeach()
