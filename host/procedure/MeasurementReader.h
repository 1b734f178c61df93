#pragma once

#include "host/procedure/Procedure.h"
#include "host/procedure/Toml.h"
#include "host/text/Diagnostic.h"

#include <string>
#include <vector>

namespace vant::host {

/// Reads the measurement `name` from its table. Every mistake goes into `found`.
Measurement ReadMeasurement(const toml::key& name, const toml::node& node, Diagnostics& found);

/// The keys of limits in a table.
const std::vector<std::string>& LimitKeys();

/// Reads the limits that a table has under these keys, as those of a measurement.
void ReadLimits(const toml::table& table, Measurement& measurement, Diagnostics& found);

} // namespace vant::host
