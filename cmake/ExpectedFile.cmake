# Compares what a test run produced with an expected file of the project; script/accept replaces such files.

# vant_compare_expected(RESULT FILE ACTUAL TEXT): sets RESULT to an empty text if FILE, named as from the project's folder
# SOURCE_DIR, holds TEXT; else to a message, and leaves TEXT in the file ACTUAL. Under script/accept FILE is replaced
# instead, and its name is added to the list that the variable VANT_ACCEPT of the environment names.
function(vant_compare_expected result file actual text)
  set(${result} "" PARENT_SCOPE)
  set(expected ${SOURCE_DIR}/${file})
  if(EXISTS ${expected})
    file(READ ${expected} wanted)
    if(text STREQUAL wanted)
      return()
    endif()
  endif()
  if(DEFINED ENV{VANT_ACCEPT})
    file(WRITE ${expected} "${text}")
    file(APPEND $ENV{VANT_ACCEPT} "${file}\n")
  else()
    file(WRITE ${actual} "${text}")
    set(${result} "${file} is not what came; see ${actual}\n" PARENT_SCOPE)
  endif()
endfunction()
