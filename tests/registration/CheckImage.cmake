# Fails unless a Windows module can be placed anywhere, keeps data from running as code, and tells nothing of the machine
# that it was built on; prints its size:
#   cmake -DMODULE=FILE -DOBJDUMP=PROGRAM -DHIGH_ENTROPY=BOOL -DFOLDERS=LIST -P CheckImage.cmake

cmake_minimum_required(VERSION 3.25)

if(NOT EXISTS ${MODULE})
  message(FATAL_ERROR "There is no ${MODULE}; build it first.")
endif()
execute_process(COMMAND ${OBJDUMP} -p -h ${MODULE} OUTPUT_VARIABLE headers RESULT_VARIABLE result)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "${OBJDUMP}: ${result}")
endif()

if(NOT headers MATCHES "DllCharacteristics[ \t]+([0-9a-fA-F]+)")
  message(FATAL_ERROR "${MODULE}: no DllCharacteristics found")
endif()
set(characteristics 0x${CMAKE_MATCH_1})
set(required DYNAMIC_BASE 0x40 NX_COMPAT 0x100)
if(HIGH_ENTROPY)
  list(APPEND required HIGH_ENTROPY_VA 0x20)
endif()
while(required)
  list(POP_FRONT required name bit)
  math(EXPR set "${characteristics} & ${bit}")
  if(set EQUAL 0)
    message(SEND_ERROR "${MODULE}: ${name} is not set (${characteristics})")
  endif()
endwhile()

# Without relocations the system could not move it, whatever the flag says.
if(headers MATCHES "relocations stripped" OR NOT headers MATCHES "\\.reloc[ \t]+0*[1-9a-fA-F]"
   OR NOT headers MATCHES "Virtual Address: [0-9a-fA-F]+ Chunk size")
  message(SEND_ERROR "${MODULE}: no relocations")
endif()
if(headers MATCHES "\\.debug_|\\.stab")
  message(SEND_ERROR "${MODULE}: debug sections")
endif()

foreach(folder IN LISTS FOLDERS)
  string(REGEX REPLACE "([][+.*()^$?|\\])" "\\\\\\1" pattern "${folder}")
  foreach(encoding IN ITEMS "" UTF-16LE)
    file(STRINGS ${MODULE} found REGEX "${pattern}" ENCODING ${encoding})
    if(found)
      message(SEND_ERROR "${MODULE} names a folder of the machine that built it: ${found}")
    endif()
  endforeach()
endforeach()
file(STRINGS ${MODULE} found REGEX "\\.pdb|\\.cpp$|/home/|/usr/")
if(found)
  message(SEND_ERROR "${MODULE} holds file names of its build: ${found}")
endif()

file(SIZE ${MODULE} size)
message(STATUS "${MODULE}: ${size} bytes")
