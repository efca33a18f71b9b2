marlox_test(shape_import SOURCES
    ${PROJECT_SOURCE_DIR}/tests/host/shapes/import/ImportShapesTest.cpp
    ${PROJECT_SOURCE_DIR}/tests/host/shapes/import/ShapeFixtures.h)
marlox_test(shape_import_details SOURCES
    ${PROJECT_SOURCE_DIR}/tests/host/shapes/import/ImportDetailsTest.cpp
    ${PROJECT_SOURCE_DIR}/tests/host/shapes/import/ShapeFixtures.h)
# The writers are no part of a library that programs link.
marlox_test(shape_writers SOURCES
    ShapeWritersTest.cpp
    ${PROJECT_SOURCE_DIR}/controls/polyline/ShapeWriters.cpp
    ${PROJECT_SOURCE_DIR}/tests/host/shapes/import/ShapeFixtures.h)

# One program for each reader that a fuzzer drives; -DMARLOX_FUZZ=ON with clang.
option(MARLOX_FUZZ "Build the fuzz targets of the shape readers (needs clang)" OFF)
if(MARLOX_FUZZ)
    if(NOT CMAKE_CXX_COMPILER_ID MATCHES Clang)
        message(FATAL_ERROR "MARLOX_FUZZ needs clang")
    endif()
    find_package(ZLIB REQUIRED)
    file(GLOB import_sources CONFIGURE_DEPENDS
        ${PROJECT_SOURCE_DIR}/host/system/shapes/import/*.cpp)
    foreach(format LightWave Motion Shape Ssf Fxs Nuke PathText)
        string(TOLOWER fuzz_${format} target)
        add_executable(${target}
            ${PROJECT_SOURCE_DIR}/tests/host/shapes/import/FuzzTarget.cpp ${import_sources})
        marlox_target(${target})
        target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR}/host)
        # The readers are compiled in, so that the fuzzer sees their branches.
        target_compile_definitions(${target} PRIVATE MARLOXSYSTEM_BUILD MARLOX_FUZZED=${format})
        target_compile_options(${target} PRIVATE -fsanitize=fuzzer,address,undefined)
        target_link_options(${target} PRIVATE -fsanitize=fuzzer,address,undefined)
        target_link_libraries(${target} PRIVATE Qt5::Core Qt5::Gui ${ZLIB_LIBRARIES})
        set_target_properties(${target} PROPERTIES
            AUTOMOC OFF RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/fuzz)
    endforeach()
endif()
