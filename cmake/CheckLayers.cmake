# Checks who includes whom, that no headers include each other in a circle, and that only the platform asks which system
# it is on:
#   cmake -DSOURCE_DIR=FOLDER -P CheckLayers.cmake
# Every violation is reported as file:line. Paths in #include lines start at the project's root.

cmake_minimum_required(VERSION 3.25)
cmake_path(ABSOLUTE_PATH SOURCE_DIR NORMALIZE)

# A layer is a folder, without those below it that are layers of their own. Behind it stand the folders that its files may
# include, with everything below them, besides the layer itself.
set(layers
    "platform"
    "ecm platform"
    "framework ecm platform"
    "commands framework ecm platform"
    "module commands framework platform"
    "host/text platform"
    "host/record host/text platform"
    "host/object host/text host/record framework/interfaces ecm/interfaces platform"
    "host/engine/model host/text host/record platform"
    "host/engine/objects host/engine/model host/object host/record host/text ecm/interfaces platform"
    "host/conditions host/engine host/object host/record host/text framework/interfaces platform"
    "host/services host/conditions host/engine host/object host/record host/text framework/interfaces ecm/interfaces platform"
    "host/procedure host/services host/conditions host/engine/model host/record host/text framework/interfaces platform"
    "host/runner host/procedure host/services host/conditions host/engine host/object host/record host/text framework/interfaces platform"
    "host/suite host/runner host/procedure host/conditions host/engine/model host/record host/text platform"
    "vant host platform")

# The only file that asks which system it is on.
set(system_header platform/system.h)
# Folders of these names hold what only one system builds; the rest of the project, except the system header, includes
# nothing of them.
set(system_folders "/(portable|windows)/")
set(system_macros "_WIN32|_WIN64|WIN32|__linux|__unix|__APPLE__|__MINGW|__CYGWIN__|_MSC_VER|_POSIX_")

function(report file number message)
  message(NOTICE "${file}:${number}: ${message}")
  set_property(GLOBAL APPEND PROPERTY violations x)
endfunction()

# The longest layer in whose folder a file lies; empty if there is none.
function(layer_of file result)
  set(best "")
  foreach(layer IN LISTS layer_names)
    string(LENGTH "${layer}" length)
    string(LENGTH "${best}" best_length)
    string(FIND "${file}" "${layer}/" position)
    if(position EQUAL 0 AND length GREATER best_length)
      set(best "${layer}")
    endif()
  endforeach()
  set(${result} "${best}" PARENT_SCOPE)
endfunction()

function(check_include layer file number target)
  if("/${target}" MATCHES "${system_folders}" AND NOT "/${file}" MATCHES "${system_folders}"
     AND NOT file STREQUAL system_header)
    report(${file} ${number} "only ${system_header} and the folders of one system may include \"${target}\"")
  endif()
  layer_of("${target}" target_layer)
  if(target_layer STREQUAL layer)
    return()
  endif()
  foreach(allowed IN LISTS "${layer}_may_include")
    string(FIND "${target}" "${allowed}/" position)
    if(position EQUAL 0)
      return()
    endif()
  endforeach()
  report(${file} ${number} "${layer}/ may not include \"${target}\"")
endfunction()

# Takes away, again and again, every file that includes none of the others or is included by none of them: what stays are
# the circles.
function(check_circles)
  set(files ${ARGN})
  set(previous_length -1)
  list(LENGTH files length)
  while(NOT length EQUAL previous_length)
    set(previous_length ${length})
    foreach(direction includes included_by)
      foreach(file IN LISTS files)
        set(reaches FALSE)
        foreach(other IN LISTS "${direction} ${file}")
          if(other IN_LIST files)
            set(reaches TRUE)
            break()
          endif()
        endforeach()
        if(NOT reaches)
          list(REMOVE_ITEM files ${file})
        endif()
      endforeach()
    endforeach()
    list(LENGTH files length)
  endwhile()
  foreach(file IN LISTS files)
    foreach(other IN LISTS "includes ${file}")
      if(other IN_LIST files)
        set(line "line_of ${file} ${other}")
        report(${file} ${${line}} "\"${other}\" includes this file in turn: a circle")
      endif()
    endforeach()
  endforeach()
endfunction()

# Reads the table, in which a layer may only build on layers that stand above it: so the layers form no circle.
set(layer_names "")
foreach(row IN LISTS layers)
  string(REPLACE " " ";" allowed "${row}")
  list(POP_FRONT allowed layer)
  foreach(folder IN LISTS allowed)
    # A folder stands above if it lies in a layer that does, or holds one.
    layer_of("${folder}/" lower)
    set(known ${layer_names})
    list(FILTER known INCLUDE REGEX "^${folder}/")
    if(NOT lower AND NOT known)
      message(FATAL_ERROR "The table of layers: ${layer} stands above ${folder}, on which it builds.")
    endif()
  endforeach()
  list(APPEND layer_names ${layer})
  set("${layer}_may_include" ${allowed})
endforeach()

list(TRANSFORM layer_names REPLACE "/.*" "" OUTPUT_VARIABLE top_folders)
list(REMOVE_DUPLICATES top_folders)
list(JOIN top_folders "|" top_pattern)

set(count 0)
set(all_files "")
foreach(folder IN LISTS top_folders)
  file(GLOB_RECURSE files RELATIVE ${SOURCE_DIR} ${SOURCE_DIR}/${folder}/*.h ${SOURCE_DIR}/${folder}/*.cpp
                                                 ${SOURCE_DIR}/${folder}/*.in)
  foreach(file IN LISTS files)
    list(APPEND all_files ${file})
    layer_of(${file} layer)
    if(NOT layer)
      report(${file} 1 "this folder is no layer of the table in CheckLayers.cmake")
      continue()
    endif()
    file(READ ${SOURCE_DIR}/${file} text)
    # One list element per line, without the characters that have a meaning in lists.
    string(REGEX REPLACE "[][;\\]" "_" text "${text}")
    string(REPLACE "\n" ";" lines "${text}")
    set(number 0)
    foreach(line IN LISTS lines)
      math(EXPR number "${number} + 1")
      if(NOT line MATCHES "^[ \t]*#")
        continue()
      endif()
      if(line MATCHES "#[ \t]*include[ \t]*\"([^\"]*)\"")
        set(target "${CMAKE_MATCH_1}")
        math(EXPR count "${count} + 1")
        check_include(${layer} ${file} ${number} "${target}")
        list(APPEND "includes ${file}" ${target})
        list(APPEND "included_by ${target}" ${file})
        set("line_of ${file} ${target}" ${number})
      elseif(line MATCHES "#[ \t]*include[ \t]*<((${top_pattern})/[^>]*)>")
        report(${file} ${number} "<${CMAKE_MATCH_1}> is a header of this project; it stands in quotes")
      elseif(NOT file STREQUAL system_header AND line MATCHES "#[ \t]*(el)?if.*(${system_macros})")
        report(${file} ${number} "only ${system_header} may ask which system it is on")
      endif()
    endforeach()
  endforeach()
endforeach()
if(count EQUAL 0)
  message(FATAL_ERROR "No #include line found under ${SOURCE_DIR}.")
endif()
check_circles(${all_files})
get_property(violations GLOBAL PROPERTY violations)
if(violations)
  list(LENGTH violations number)
  message(FATAL_ERROR "Violations: ${number}")
endif()
message(STATUS "${count} #include lines checked.")
