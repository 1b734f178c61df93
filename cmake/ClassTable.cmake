# Reads framework/interfaces/classes.csv into VANT_CLASSES, a list of "name|resource|clsid", and VANT_CLASS_NAMES, and
# writes the header ClassIds.h from it.

set(VANT_GENERATED_DIR ${PROJECT_BINARY_DIR}/generated)
set(table ${PROJECT_SOURCE_DIR}/framework/interfaces/classes.csv)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${table})

file(STRINGS ${table} rows REGEX "^[^#]")
set(VANT_CLASSES "")
set(VANT_CLASS_NAMES "")
set(class_ids "")
set(class_rows "")
foreach(row IN LISTS rows)
  if(NOT row MATCHES "^([A-Za-z]+),([0-9]+),([0-9A-Fa-f]+)-([0-9A-Fa-f]+)-([0-9A-Fa-f]+)-([0-9A-Fa-f]+)-([0-9A-Fa-f]+)$")
    message(FATAL_ERROR "framework/interfaces/classes.csv: not a row of the class table: ${row}")
  endif()
  set(name ${CMAKE_MATCH_1})
  set(resource ${CMAKE_MATCH_2})
  set(head "0x${CMAKE_MATCH_3}, 0x${CMAKE_MATCH_4}, 0x${CMAKE_MATCH_5}")
  set(tail ${CMAKE_MATCH_6}${CMAKE_MATCH_7})
  set(clsid ${CMAKE_MATCH_3}-${CMAKE_MATCH_4}-${CMAKE_MATCH_5}-${CMAKE_MATCH_6}-${CMAKE_MATCH_7})
  list(APPEND VANT_CLASSES "${name}|${resource}|${clsid}")
  list(APPEND VANT_CLASS_NAMES ${name})
  string(REGEX REPLACE "(..)" "0x\\1, " tail "${tail}")
  string(REGEX REPLACE ", $" "" tail "${tail}")
  string(APPEND class_ids "inline constexpr CLSID CLSID_${name} = {\n"
         "    ${head}, {${tail}}};\n"
         "inline constexpr UINT resource_${name} = ${resource};\n")
  string(APPEND class_rows "    {L\"${name}\", L\"{${clsid}}\", &CLSID_${name}, resource_${name}},\n")
endforeach()

file(CONFIGURE OUTPUT ${VANT_GENERATED_DIR}/framework/interfaces/ClassIds.h @ONLY CONTENT [[#pragma once

// Made from framework/interfaces/classes.csv.

#include "platform/system.h"

namespace vant {

// The identifier of each class, and the resource number of its registration script.
@class_ids@
/// One command class of the module.
struct ClassRow {
    const wchar_t* name;   ///< The ProgID is "VantCommands." and this name.
    const wchar_t* clsid;  ///< The class identifier as text, in braces.
    const CLSID* classId;
    UINT resource;         ///< The resource number of the registration script.
};

inline constexpr ClassRow classTable[] = {
@class_rows@};

} // namespace vant
]])
