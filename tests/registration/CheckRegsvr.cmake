# Registers the module with the system's own tool, creates every class from a client, unregisters it, and compares the
# classes before and after:
#   cmake -DEMULATOR=PROGRAM -DMODULE=FILE -DCLIENT=FILE -DPROGIDS=LIST -DSCRATCH=FOLDER -P CheckRegsvr.cmake

cmake_minimum_required(VERSION 3.25)

# run(EXPECTED PROGRAM [ARGUMENT ...]): fails unless the program's exit code is EXPECTED ("failure": any but 0).
function(run expected)
  execute_process(COMMAND ${EMULATOR} ${ARGN} WORKING_DIRECTORY ${SCRATCH}
                  RESULT_VARIABLE result OUTPUT_VARIABLE text ERROR_VARIABLE text)
  message(STATUS "${ARGN}: ${result}\n${text}")
  if(expected STREQUAL "failure" AND result EQUAL 0 OR NOT expected STREQUAL "failure" AND NOT result EQUAL expected)
    message(FATAL_ERROR "Expected ${expected}.")
  endif()
endfunction()

function(export_classes file)
  file(REMOVE ${SCRATCH}/${file})
  run(0 reg export HKLM\\Software\\Classes ${file} /y)
  file(SIZE ${SCRATCH}/${file} size)
  if(size LESS 100000)
    message(FATAL_ERROR "${file} holds no classes: ${size} bytes.")
  endif()
endfunction()

file(MAKE_DIRECTORY ${SCRATCH})
run(0 regsvr32 /s /u ${MODULE})
export_classes(before.reg)
run(failure ${CLIENT} ${PROGIDS})
run(0 regsvr32 /s ${MODULE})
run(0 ${CLIENT} ${PROGIDS})
export_classes(between.reg)
run(0 regsvr32 /s /u ${MODULE})
run(failure ${CLIENT} ${PROGIDS})
export_classes(after.reg)

file(SHA256 ${SCRATCH}/before.reg before)
file(SHA256 ${SCRATCH}/between.reg between)
file(SHA256 ${SCRATCH}/after.reg after)
if(before STREQUAL between)
  message(FATAL_ERROR "Registration left no trace in the classes.")
endif()
if(NOT before STREQUAL after)
  message(FATAL_ERROR "The classes differ: compare before.reg and after.reg in ${SCRATCH}.")
endif()
