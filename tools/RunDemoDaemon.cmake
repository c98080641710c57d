# Runs the demo daemon and checks both its exit status and its output (ctest's own pass
# expression would ignore the status).
#   cmake -DDAEMON=<path> -DARGS=<;-list> -DEXPECTED_RESULT=<n> -DEXPECTED_OUTPUT=<regex>
#         -P RunDemoDaemon.cmake
execute_process(COMMAND ${DAEMON} ${ARGS}
    RESULT_VARIABLE result
    OUTPUT_VARIABLE output
    ERROR_VARIABLE errors)
if(NOT "${result}" STREQUAL "${EXPECTED_RESULT}")
    message(FATAL_ERROR "exit status ${result}, expected ${EXPECTED_RESULT}\n"
                        "stdout:\n${output}\nstderr:\n${errors}")
endif()
if(NOT "${output}${errors}" MATCHES "${EXPECTED_OUTPUT}")
    message(FATAL_ERROR "output does not match '${EXPECTED_OUTPUT}'\n"
                        "stdout:\n${output}\nstderr:\n${errors}")
endif()
