# Looks in JOURNALS for every one of CLASSES, executed with success; see vant_add_class_check.
cmake_minimum_required(VERSION 3.25)

# grep takes a fraction of the time that file(STRINGS) takes for these megabytes.
execute_process(COMMAND grep -hE "\"operation\":\"CommandEnded\",.*\"phase\":\"execute\"}.*\"result\":\"0x00000000\"" ${JOURNALS}
                OUTPUT_VARIABLE ended)

set(missing "")
foreach(class IN LISTS CLASSES)
  if(NOT ended MATCHES "\"class\":\"${class}\"")
    string(APPEND missing " ${class}")
  endif()
endforeach()
if(missing)
  message(NOTICE "never executed:${missing}")
  message(FATAL_ERROR "Not every class is used.")
endif()
