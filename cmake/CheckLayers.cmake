# Checks who includes whom, and that platform conditionals stay where they belong:
#   cmake -DSOURCE_DIR=FOLDER -P CheckLayers.cmake
# Every violation is reported as file:line. Paths in #include lines start at the project's root.

cmake_minimum_required(VERSION 3.25)

# What each room may include besides itself.
set(platform_may_include "")
set(ecm_may_include platform)
set(framework_may_include ecm platform)
set(commands_may_include framework ecm platform)
set(module_may_include commands framework platform)
set(host_may_include framework/interfaces ecm/interfaces platform)
set(vant_may_include host platform)

set(rooms platform ecm framework commands module host vant)
set(rooms_without_conditionals ecm framework commands host vant)

function(report file number message)
  message(SEND_ERROR "${file}:${number}: ${message}")
endfunction()

function(check_include room file number target)
  foreach(allowed IN ITEMS ${room} ${${room}_may_include})
    if("${target}" MATCHES "^${allowed}/")
      return()
    endif()
  endforeach()
  report(${file} ${number} "${room}/ may not include \"${target}\"")
endfunction()

set(count 0)
foreach(room IN LISTS rooms)
  file(GLOB_RECURSE files RELATIVE ${SOURCE_DIR} ${SOURCE_DIR}/${room}/*.h ${SOURCE_DIR}/${room}/*.cpp
                                                 ${SOURCE_DIR}/${room}/*.in)
  foreach(file IN LISTS files)
    file(READ ${SOURCE_DIR}/${file} text)
    # One list element per line: characters with a meaning in lists are of none here.
    string(REGEX REPLACE "[][;\\]" "_" text "${text}")
    string(REPLACE "\n" ";" lines "${text}")
    set(number 0)
    foreach(line IN LISTS lines)
      math(EXPR number "${number} + 1")
      if(NOT line MATCHES "^[ \t]*#")
        continue()
      endif()
      if(line MATCHES "#[ \t]*include[ \t]*\"([^\"]*)\"")
        math(EXPR count "${count} + 1")
        check_include(${room} ${file} ${number} "${CMAKE_MATCH_1}")
      elseif(line MATCHES "#[ \t]*include[ \t]*<((platform|ecm|framework|commands|module|host|vant)/[^>]*)>")
        report(${file} ${number} "<${CMAKE_MATCH_1}> is a header of this project; it stands in quotes")
      elseif(room IN_LIST rooms_without_conditionals
             AND line MATCHES "#[ \t]*(el)?if.*(_WIN32|_WIN64|WIN32|__linux__|__unix__|__APPLE__|__MINGW|_MSC_VER)")
        report(${file} ${number} "${room}/ may not ask for the platform")
      endif()
    endforeach()
  endforeach()
endforeach()
if(count EQUAL 0)
  message(FATAL_ERROR "No #include line found under ${SOURCE_DIR}.")
endif()
message(STATUS "${count} #include lines checked.")
