marlox_test(workbench-image-files SOURCES ImageFilesTest.cpp TestPictures.h
    LIBS workbench-core Marlox::OpenImageIO)
# Whole stacks, which tell the image library's leaks from ours.
marlox_test_environment(workbench-image-files
    "ASAN_OPTIONS=${marlox_asan_options}:fast_unwind_on_malloc=0")
marlox_test(workbench-tools SOURCES ToolsTest.cpp ToolBench.h TestPictures.h LIBS workbench-core)
marlox_test(workbench-overlay-tools SOURCES OverlayToolsTest.cpp ToolBench.h TestPictures.h
    LIBS workbench-core)
marlox_test(workbench-display SOURCES DisplayTest.cpp TestPictures.h LIBS workbench-core)
marlox_test(workbench-command-line SOURCES CommandLineTest.cpp ToolBench.h TestPictures.h
    LIBS workbench-core)
add_dependencies(workbench-command-line marlox-workbench marloxcontrols)

marlox_test(workbench-plugin-library SOURCES PluginLibraryTest.cpp)
foreach(plugin Working Unresolved Silent)
    add_library(test-plugin-${plugin} MODULE plugins/${plugin}.cpp)
    target_link_libraries(test-plugin-${plugin} PRIVATE marloxsystem)
    target_compile_options(test-plugin-${plugin} PRIVATE -fno-gnu-unique)
    string(TOUPPER ${plugin} name)
    target_compile_definitions(workbench-plugin-library PRIVATE
        TEST_PLUGIN_${name}="$<TARGET_FILE:test-plugin-${plugin}>")
    add_dependencies(workbench-plugin-library test-plugin-${plugin})
endforeach()

# An overlay with buttons and menus, for the viewer.
add_library(test-plugin-Buttons MODULE ${PROJECT_SOURCE_DIR}/tests/host/controls/ButtonsOverlay.cpp)
target_include_directories(test-plugin-Buttons PRIVATE ${PROJECT_SOURCE_DIR}/tests)
target_link_libraries(test-plugin-Buttons PRIVATE marloxsystem)
target_compile_options(test-plugin-Buttons PRIVATE -fno-gnu-unique)

# The window itself, driven by a script as users do.
set(windowFolder ${CMAKE_BINARY_DIR}/tests/workbench-window)
file(MAKE_DIRECTORY ${windowFolder})
add_test(NAME workbench-window COMMAND marlox-workbench
    --script ${CMAKE_CURRENT_SOURCE_DIR}/window.lua ${windowFolder} ${CMAKE_BINARY_DIR}/samples)
marlox_test_environment(workbench-window)

# The order of initialisation in all our libraries, the plug-in and the program: all are loaded, and
# nothing is looked for in the memory of what was unloaded.
if(MARLOX_SANITIZE)
    add_test(NAME initialisation-order COMMAND marlox-workbench --list-controls)
    marlox_test_environment(initialisation-order
        "ASAN_OPTIONS=${marlox_asan_options}:check_initialization_order=1:detect_leaks=0")
endif()
