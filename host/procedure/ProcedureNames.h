#pragma once

#include "host/procedure/Procedure.h"
#include "host/text/Diagnostic.h"

namespace vant::host {

/// Looks up every step, command and condition set that a procedure names: an error for each one that does not
/// exist, a warning for each step that nothing can lead to.
void CheckNames(const Procedure& procedure, Diagnostics& found);

} // namespace vant::host
