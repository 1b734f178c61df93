#pragma once

#include <map>
#include <set>
#include <string>

namespace vant::host {

/// The components of a display: the properties that each one has. A component without any accepts every
/// property.
using Components = std::map<std::string, std::set<std::string>>;

} // namespace vant::host
