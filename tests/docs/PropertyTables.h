#pragma once

#include "framework/PropertyTable.h"

#include <map>
#include <string>

namespace vant::test {

/// The property table of every command class, by the class's name.
const std::map<std::string, PropertyTable>& PropertyTables();

} // namespace vant::test
