# Registers the module through vant, lists it, runs a procedure by ProgID, unregisters it:
#   cmake -DEMULATOR=PROGRAM -DVANT=FILE -DPROCEDURE=FILE -DSCRATCH=FOLDER -P CheckVant.cmake

cmake_minimum_required(VERSION 3.25)

# run(EXPECTED PATTERN [ARGUMENT ...]): fails unless vant's exit code is EXPECTED and what it printed matches PATTERN.
function(run expected pattern)
  execute_process(COMMAND ${EMULATOR} ${VANT} ${ARGN} WORKING_DIRECTORY ${SCRATCH}
                  RESULT_VARIABLE result OUTPUT_VARIABLE text ERROR_VARIABLE text)
  message(STATUS "vant ${ARGN}: ${result}\n${text}")
  if(NOT result EQUAL expected OR NOT text MATCHES "${pattern}")
    message(FATAL_ERROR "Expected ${expected} and a text that matches: ${pattern}")
  endif()
endfunction()

file(MAKE_DIRECTORY ${SCRATCH})
file(REMOVE ${SCRATCH}/catalogue.txt)
set(ENV{VANT_CATALOGUE} ${SCRATCH}/catalogue.txt)

run(0 "" unregister)
run(0 "" unregister --user)
run(0 "no class is registered" catalogue)
run(3 "is not registered; `vant register`" run --registered ${PROCEDURE})
foreach(options "" "--user")
  run(0 "^registered " register ${options})
  run(0 "VantCommands.Calculator {1111BFC7-28AF-4b67-B426-F20AEB66F782} .*VantCommands[.](so|dll)" catalogue)
  # Wine 8 creates no class from the user's part of the registry, as Windows does; what stands there is seen all the same.
  if(NOT (options AND EMULATOR))
    run(0 "passed: " run --registered ${PROCEDURE})
  endif()
  run(0 "^unregistered " unregister ${options})
  run(0 "no class is registered" catalogue)
endforeach()
if(NOT EMULATOR AND NOT CMAKE_HOST_WIN32)
  file(WRITE ${SCRATCH}/catalogue.txt "[A]\nnonsense\n")
  run(3 "catalogue.txt:2: not a line of a class catalogue" catalogue)
  file(REMOVE ${SCRATCH}/catalogue.txt)
endif()
run(2 "--registered.*--module|--module.*--registered" run --registered --module ${VANT} ${PROCEDURE})
run(3 "cannot load the module" register --module ${SCRATCH}/absent)
if(EXISTS ${SCRATCH}/catalogue.txt)
  message(FATAL_ERROR "The catalogue is left behind.")
endif()
