#pragma once

#include "host/procedure/Procedure.h"
#include "host/procedure/Toml.h"
#include "host/text/Diagnostic.h"

namespace vant::host {

/// Reads the measurement `name` from its table. Every mistake goes into `found`.
Measurement ReadMeasurement(const toml::key& name, const toml::node& node, Diagnostics& found);

} // namespace vant::host
