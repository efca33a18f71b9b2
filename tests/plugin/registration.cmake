# Tests of the control library as a host sees it: loaded at run time, never linked.
function(marlox_plugin_test name)
    marlox_test(${name} ${ARGN})
    add_dependencies(${name} marloxcontrols)
endfunction()

marlox_plugin_test(plugin-registration SOURCES RegistrationTest.cpp LIBS marloxscript)
marlox_plugin_test(plugin-loading SOURCES LoadingTest.cpp LIBS marloxscript ${CMAKE_DL_LIBS})
marlox_plugin_test(plugin-resources SOURCES ResourcesTest.cpp LIBS marloxscript)
marlox_plugin_test(plugin-generic-controls SOURCES GenericControlsTest.cpp LIBS marloxscript
    Qt5::Widgets)
marlox_plugin_test(plugin-scripts SOURCES ScriptsTest.cpp LIBS marloxscript ${CMAKE_DL_LIBS})
