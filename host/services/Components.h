#pragma once

#include <map>
#include <set>
#include <string>

namespace vant::host {

/// The components of a display, each with the names of its properties. A component without names accepts
/// every property.
using Components = std::map<std::string, std::set<std::string>>;

} // namespace vant::host
