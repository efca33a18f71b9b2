# Finds OpenImageIO and OpenColorIO as the targets Marlox::OpenImageIO and Marlox::OpenColorIO. Their
# own CMake packages are passed over: they want the development files of everything that they were
# built with, which their Debian packages do not bring along.

function(marlox_image_library name header package)
    find_path(${name}_INCLUDE_DIR ${header})
    find_library(${name}_LIBRARY ${name})
    mark_as_advanced(${name}_INCLUDE_DIR ${name}_LIBRARY)
    if(NOT ${name}_INCLUDE_DIR OR NOT ${name}_LIBRARY)
        message(FATAL_ERROR "${name} was not found; its Debian package is ${package}. "
            "MARLOX_WORKBENCH=OFF builds the libraries and the plug-in without it.")
    endif()
    add_library(Marlox::${name} UNKNOWN IMPORTED GLOBAL)
    set_target_properties(Marlox::${name} PROPERTIES
        IMPORTED_LOCATION ${${name}_LIBRARY}
        INTERFACE_INCLUDE_DIRECTORIES ${${name}_INCLUDE_DIR})
endfunction()

marlox_image_library(OpenImageIO OpenImageIO/imageio.h libopenimageio-dev)
marlox_image_library(OpenColorIO OpenColorIO/OpenColorIO.h libopencolorio-dev)
find_library(OpenImageIO_Util_LIBRARY OpenImageIO_Util)
mark_as_advanced(OpenImageIO_Util_LIBRARY)
if(OpenImageIO_Util_LIBRARY)
    set_property(TARGET Marlox::OpenImageIO PROPERTY INTERFACE_LINK_LIBRARIES ${OpenImageIO_Util_LIBRARY})
endif()
