#pragma once

#include "host/procedure/CommandUse.h"
#include "host/procedure/Procedure.h"
#include "host/text/Diagnostic.h"

#include <span>

namespace vant::host {

/// Follows a procedure from step to step: errors for transitions that lead nowhere, warnings for steps that
/// cannot be reached or cannot do what they say. Every step and command that it names exists.
void CheckFlow(const Procedure& procedure, std::span<const CommandUse> commands, Diagnostics& found);

} // namespace vant::host
