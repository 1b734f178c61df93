#pragma once

#include "host/conditions/Condition.h"
#include "host/procedure/Procedure.h"
#include "host/text/Diagnostic.h"

#include <toml++/toml.h>

namespace vant::host {

/// Reads the conditions of the set `name` from its table. Every mistake goes into `found`.
Conditions ReadConditionSet(const toml::key& name, const toml::node& node, Diagnostics& found);

} // namespace vant::host
