# The installed tree: host libraries with headers and a CMake package, the plug-in, the look pack
# (host/look), the workbench with its desktop entry and samples.
include(CMakePackageConfigHelpers)

set(MARLOX_PLUGIN_DIR ${CMAKE_INSTALL_LIBDIR}/marlox)
set(MARLOX_WORKBENCH_PATH ${CMAKE_INSTALL_BINDIR}/marlox-workbench)
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Marlox)

install(TARGETS marloxsystem marloxscript EXPORT MarloxTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(TARGETS marloxcontrols LIBRARY DESTINATION ${MARLOX_PLUGIN_DIR})
# Headers that only the libraries' own sources include.
set(inner_headers)
foreach(name *_p Autosave DocumentFlow DocumentText InputMenu InputState MaskBlend ScrubDrag
        VectorBitmap CLocale ExpressionLibrary ExpressionScope Expressions LayoutDescription LayoutMgr
        LayoutModel LuaNative LuaState LuaValues ScriptObjects ValueText)
    list(APPEND inner_headers PATTERN ${name}.h EXCLUDE)
endforeach()
install(DIRECTORY ${PROJECT_SOURCE_DIR}/host/system ${PROJECT_SOURCE_DIR}/host/script
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/marlox FILES_MATCHING ${inner_headers} PATTERN "*.h")
install(EXPORT MarloxTargets NAMESPACE Marlox:: DESTINATION ${package_dir})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/MarloxConfig.cmake.in
    ${CMAKE_BINARY_DIR}/MarloxConfig.cmake
    INSTALL_DESTINATION ${package_dir}
    PATH_VARS MARLOX_PLUGIN_DIR MARLOX_WORKBENCH_PATH)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/MarloxConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_BINARY_DIR}/MarloxConfig.cmake ${CMAKE_BINARY_DIR}/MarloxConfigVersion.cmake
    DESTINATION ${package_dir})

if(MARLOX_WORKBENCH)
    set(desktop ${PROJECT_SOURCE_DIR}/workbench/desktop)
    install(FILES ${desktop}/marlox-workbench.desktop
        DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
    install(FILES ${desktop}/marlox-workbench.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages)
    install(FILES ${PROJECT_SOURCE_DIR}/host/look/bitmaps/Icons.Workbench.Application.svg
        DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps
        RENAME marlox-workbench.svg)
endif()
