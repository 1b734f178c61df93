# Runs the host once: it must succeed, print nothing on standard error and print what expected.txt holds.
cmake_minimum_required(VERSION 3.25)
include(${SOURCE_DIR}/cmake/ExpectedFile.cmake)

execute_process(COMMAND ${EMULATOR} ${PROGRAM} ${MODULE} RESULT_VARIABLE exit OUTPUT_VARIABLE output
                ERROR_VARIABLE errors)
# Windows consoles end their lines with two characters.
string(REPLACE "\r\n" "\n" output "${output}")
if(NOT exit STREQUAL "0" OR NOT errors STREQUAL "")
  message(FATAL_ERROR "exit code ${exit}\n--- standard output\n${output}--- standard error\n${errors}")
endif()
vant_compare_expected(difference examples/minimal_host/expected.txt ${SCRATCH}/actual.txt "${output}")
if(difference)
  message(FATAL_ERROR "${difference}--- standard output\n${output}To accept the new file: script/accept minimal_host\n")
endif()
