# cmake -P script: install, then configure, build and run the consumer twice
# (through the CMake package and through pkg-config).
file(REMOVE_RECURSE ${WORK_DIR})
set(prefix ${WORK_DIR}/prefix)

function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE err)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "Command failed (${result}): ${ARGN}\n${out}\n${err}")
    endif()
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})

foreach(mode OFF ON)
    set(build ${WORK_DIR}/build-pkgconfig-${mode})
    run(${CMAKE_COMMAND} -S ${CONSUMER_DIR} -B ${build} -G ${GENERATOR}
        -DCMAKE_CXX_COMPILER=${CXX_COMPILER}
        -DCMAKE_PREFIX_PATH=${prefix}
        -DCONSUMER_USE_PKGCONFIG=${mode}
        "-DCONSUMER_SANITIZE=${SANITIZE}")
    run(${CMAKE_COMMAND} --build ${build})
    # A shared build is found at run time through the scratch prefix.
    run(${CMAKE_COMMAND} -E env "LD_LIBRARY_PATH=${prefix}/${LIBDIR}" ${build}/consumer)
endforeach()
