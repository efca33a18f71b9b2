# The guide to scripting, call by call.
set(pictures ${CMAKE_BINARY_DIR}/tests/scripts)
file(MAKE_DIRECTORY ${pictures})
set(scripts ${CMAKE_CURRENT_SOURCE_DIR}/scripting)
marlox_script_test(workbench-reference ${scripts}/reference.lua
    ${CMAKE_BINARY_DIR}/samples/dusk.marlox
    ${PROJECT_SOURCE_DIR}/docs/script-the-workbench.md ${pictures})

# Overlays dragged over a picture.
marlox_script_test(workbench-overlays ${scripts}/overlays.lua
    ${CMAKE_BINARY_DIR}/samples/dusk.marlox ${pictures} ${CMAKE_BINARY_DIR}/samples/dusk.marlox)

# Toolbars and menus of overlays, and pens.
marlox_script_test(workbench-buttons ${scripts}/buttons.lua
    ${CMAKE_BINARY_DIR}/samples/dusk.marlox ${CMAKE_BINARY_DIR}/samples/dusk.marlox
    $<TARGET_FILE:test-plugin-Buttons> ${pictures})

# The toolbar of shapes, on a usual and on a dense screen.
foreach(scale 1 2)
    set(name workbench-shapetools-${scale}x)
    marlox_script_test(${name} ${scripts}/shapetools.lua
        ${CMAKE_BINARY_DIR}/samples/dusk.marlox ${CMAKE_BINARY_DIR}/samples/dusk.marlox ${pictures})
    marlox_test_environment(${name} QT_SCALE_FACTOR=${scale})
endforeach()

# Masks and effects connected in the window.
marlox_script_test(workbench-connect ${scripts}/connect.lua
    ${CMAKE_BINARY_DIR}/samples/dusk.marlox ${CMAKE_BINARY_DIR}/samples/dusk.marlox)

# Broken files of all kinds, in a look with some broken files of its own.
set(look ${pictures}/look)
file(COPY ${PROJECT_SOURCE_DIR}/host/look/ DESTINATION ${look})
file(WRITE ${look}/layouts/Controls.Slider.Layout.lua "{\"Controls.Slider.Layout\",\n    {\"VGroup\"")
file(WRITE ${look}/bitmaps/Icons.Workbench.Play.svg "no drawing")
file(WRITE ${look}/colours.lua "{[\"System.TextColour\"] = \"grey\"}")
marlox_script_test(workbench-broken-files ${scripts}/broken.lua
    ${CMAKE_BINARY_DIR}/samples/dusk.marlox ${pictures}
    $<TARGET_FILE:test-plugin-Silent> $<TARGET_FILE:test-plugin-Unresolved>)
marlox_test_environment(workbench-broken-files MARLOX_LOOK=${look})

# A sequence rotoscoped with mouse and keys, on a usual and on a dense screen. A second folder behind the
# first takes pictures of it.
foreach(scale 1 2)
    set(name workbench-rotoscope-${scale}x)
    file(MAKE_DIRECTORY ${pictures}/${name})
    marlox_script_test(${name} ${CMAKE_CURRENT_SOURCE_DIR}/rotoscope.lua
        ${CMAKE_BINARY_DIR}/samples/balloon.0001.exr ${pictures}/${name})
    marlox_test_environment(${name} QT_SCALE_FACTOR=${scale})
endforeach()
