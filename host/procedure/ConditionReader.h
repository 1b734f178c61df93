#pragma once

#include "host/conditions/Condition.h"
#include "host/procedure/Procedure.h"
#include "host/text/Diagnostic.h"

#include <toml++/toml.h>

namespace vant::host {

/// Reads the conditions of the set `name` from its table. Every mistake goes into `found`.
Conditions ReadConditionSet(const toml::key& name, const toml::node& node, Diagnostics& found);

/// A warning for each message of a condition that is not an entry of the data: a command must make it first.
void CheckConditionNames(const Procedure& procedure, Diagnostics& found);

/// An error for each parameter of a condition that the procedure's engine does not have.
void CheckConditionParameters(const Procedure& procedure, Diagnostics& found);

} // namespace vant::host
