# Looks in JOURNALS for every one of CLASSES, executed with success; see vant_add_class_check.
cmake_minimum_required(VERSION 3.25)

set(ended "")
foreach(journal IN LISTS JOURNALS)
  file(STRINGS ${journal} lines REGEX "\"operation\":\"CommandEnded\",.*\"phase\":\"execute\"}.*\"result\":\"0x00000000\"")
  list(APPEND ended "${lines}")
endforeach()

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
