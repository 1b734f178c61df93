#pragma once

#include "host/conditions/Limits.h"
#include "host/procedure/Toml.h"
#include "host/text/Diagnostic.h"

#include <array>

namespace vant::host {

/// The keys of limits in a table, which may have others, too.
inline constexpr std::array limitKeys = {"is",      "isNot",  "below", "above",
                                         "atLeast", "atMost", "oneOf", "like"};

/// Reads the limits in a table. Each mistake is noted, and reading goes on.
Limits ReadLimits(const toml::table& table, Diagnostics& found);

} // namespace vant::host
