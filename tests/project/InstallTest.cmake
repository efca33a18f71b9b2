# Run by ctest: see CMakeLists.txt beside this file.

function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE output
        ERROR_VARIABLE output)
    if(NOT status EQUAL 0)
        message(FATAL_ERROR "${ARGN}\nended with ${status}:\n${output}")
    endif()
    set(output "${output}" PARENT_SCOPE)
endfunction()

function(expect text)
    string(FIND "${output}" "${text}" at)
    if(at EQUAL -1)
        message(FATAL_ERROR "expected \"${text}\" in:\n${output}")
    endif()
endfunction()

set(prefix ${SCRATCH_DIR}/prefix)
file(REMOVE_RECURSE ${prefix} ${SCRATCH_DIR}/foreign)
run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})

set(flags)
if(SANITIZE)
    set(flags "-DCMAKE_CXX_FLAGS=-fsanitize=${SANITIZE}")
endif()
run(${CMAKE_COMMAND} -S ${FOREIGN_DIR} -B ${SCRATCH_DIR}/foreign -G ${GENERATOR} ${flags}
    -DCMAKE_CXX_COMPILER=${COMPILER} -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_BUILD_TYPE=Release)
run(${CMAKE_COMMAND} --build ${SCRATCH_DIR}/foreign)

# The installed workbench must find its own things: no hint from this tree.
set(plugin ${SCRATCH_DIR}/foreign/foreigncontrols.so)
set(workbench ${CMAKE_COMMAND} -E env --unset=MARLOX_LOOK --unset=MARLOX_PLUGINS
    ${prefix}/bin/marlox-workbench --plugin ${plugin})
run(${workbench} --list-controls)
expect("SliderControl\tSliderControl\tInputControl\t0x1a0000")
expect("StepperControl\tStepperControl\tInputControl\t0x1a0000")
run(${workbench} --no-recovery --script ${FOREIGN_DIR}/use.lua)
expect("stepper used")
