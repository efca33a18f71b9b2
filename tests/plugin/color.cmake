# The colour controls and their widgets: one test for each subject, on the page of the inspector's
# tests.
file(GLOB color_tests CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/color_*_test.cpp)
foreach(source ${color_tests})
    get_filename_component(name ${source} NAME_WE)
    marlox_test(${name} SOURCES ${source} LIBS inspector_parts marloxscript)
endforeach()
