# Settings and helpers that all targets of the project share.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_AUTOMOC ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
set(CMAKE_INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}" "$ORIGIN")

if(NOT CMAKE_BUILD_TYPE)
    set(CMAKE_BUILD_TYPE Release)
endif()

find_program(MARLOX_CCACHE ccache)
if(MARLOX_CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${MARLOX_CCACHE})
    set(CMAKE_C_COMPILER_LAUNCHER ${MARLOX_CCACHE})
endif()

set(MARLOX_WARNINGS -Wall -Wextra -Wpedantic $<$<CXX_COMPILER_ID:GNU>:-Wshadow=local>
    -Wnon-virtual-dtor -Woverloaded-virtual -Wimplicit-fallthrough)
# GCC 12 warns of its own string templates when it optimises.
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    list(APPEND MARLOX_WARNINGS -Wno-restrict)
endif()
if(MARLOX_WERROR)
    list(APPEND MARLOX_WARNINGS -Werror)
endif()

add_compile_definitions(QT_NO_FOREACH QT_NO_CAST_TO_ASCII
                        QT_DEPRECATED_WARNINGS_SINCE=0x050f00)

if(MARLOX_SANITIZE)
    add_compile_options(-fsanitize=${MARLOX_SANITIZE} -fno-sanitize-recover=undefined
                        -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${MARLOX_SANITIZE})
endif()

# Every target of ours: warnings, sources seen from the project's root ("widgets/...") and from
# host/ ("system/...", "script/..."), as the installed headers are.
function(marlox_target name)
    target_compile_options(${name} PRIVATE "$<$<COMPILE_LANGUAGE:CXX>:${MARLOX_WARNINGS}>")
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
endfunction()

# For programs of sanitizer builds, so that leaks in the graphics driver are told from ours.
function(marlox_keep_system_libraries program)
    if(MARLOX_SANITIZE)
        target_sources(${program} PRIVATE ${PROJECT_SOURCE_DIR}/tests/keep_system_libraries.c)
        target_link_libraries(${program} PRIVATE ${CMAKE_DL_LIBS})
    endif()
endfunction()
