# Runs the host once: it must succeed, say nothing on standard error and print what expected.txt holds.
cmake_minimum_required(VERSION 3.25)

execute_process(COMMAND ${EMULATOR} ${PROGRAM} ${MODULE} RESULT_VARIABLE exit OUTPUT_VARIABLE output
                ERROR_VARIABLE errors)
# Windows ends the lines of its consoles in its own way.
string(REPLACE "\r\n" "\n" output "${output}")
file(READ ${CMAKE_CURRENT_LIST_DIR}/expected.txt expected)
if(NOT exit STREQUAL "0" OR NOT output STREQUAL expected OR NOT errors STREQUAL "")
  message(FATAL_ERROR "exit code ${exit}\n--- standard output\n${output}--- expected\n${expected}"
                      "--- standard error\n${errors}")
endif()
