#pragma once

#include "host/procedure/Toml.h"
#include "host/suite/Sweep.h"

namespace vant::host {

/// Reads the table `sweep` of a case. Every mistake goes into `found`; a sweep with mistakes is empty.
Sweep ReadSweep(const toml::node& node, Diagnostics& found);

} // namespace vant::host
