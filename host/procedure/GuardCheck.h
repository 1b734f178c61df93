#pragma once

#include "host/procedure/Flow.h"
#include "host/text/Diagnostic.h"

#include <vector>

namespace vant::host {

/// Follows each StopConditionMonitor from the steps that start it: a warning for every step in which it may
/// choose its transition and that does not take the choice. `reached` and `takesTime` tell of each step
/// whether it can be reached, and whether time passes in it, without which nothing can be chosen there. Does
/// nothing more once the flow is no longer whole.
void CheckGuards(Flow& flow, const std::vector<bool>& reached, const std::vector<bool>& takesTime,
                 Diagnostics& found);

} // namespace vant::host
