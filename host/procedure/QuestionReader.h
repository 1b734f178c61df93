#pragma once

#include "host/procedure/Procedure.h"
#include "host/procedure/Toml.h"
#include "host/text/Diagnostic.h"

namespace vant::host {

/// Reads the value of a step's `ask`: a text, or a table. Each mistake is noted, and reading goes on.
Question ReadQuestion(const toml::node& node, Diagnostics& found);

} // namespace vant::host
