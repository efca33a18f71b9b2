# Overlays are tested through the library, as a host uses them. An overlay's test is a source file
# named overlay_<control>_test.cpp.
add_library(overlay_rig OBJECT
    ${PROJECT_SOURCE_DIR}/tests/host/controls/Probe.cpp
    ${PROJECT_SOURCE_DIR}/tests/host/controls/Probe.h
    ${CMAKE_CURRENT_LIST_DIR}/OverlayRig.cpp
    ${CMAKE_CURRENT_LIST_DIR}/OverlayRig.h
    ${CMAKE_CURRENT_LIST_DIR}/PluginLibrary.h)
marlox_target(overlay_rig)
target_include_directories(overlay_rig PRIVATE ${PROJECT_SOURCE_DIR}/tests)
target_compile_definitions(overlay_rig PRIVATE MARLOX_BINARY_DIR="${CMAKE_BINARY_DIR}")
target_link_libraries(overlay_rig PUBLIC marloxscript Qt5::Test OpenGL::GL ${CMAKE_DL_LIBS})
file(GLOB overlay_tests CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/overlay_*_test.cpp)
foreach(source ${overlay_tests})
    get_filename_component(name ${source} NAME_WE)
    marlox_test(${name} SOURCES ${source} LIBS overlay_rig marloxscript)
    add_dependencies(${name} marloxcontrols)
endforeach()
target_sources(overlay_polyline_soak_test PRIVATE ${CMAKE_CURRENT_LIST_DIR}/PolySoakHand.cpp
    ${CMAKE_CURRENT_LIST_DIR}/PolySoakHand.h)
