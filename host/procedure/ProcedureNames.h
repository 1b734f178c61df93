#pragma once

#include "host/procedure/Diagnostic.h"
#include "host/procedure/Procedure.h"

namespace vant {

/// Looks up every step and command that a procedure names: an error for each one that does not exist, a
/// warning for each step that nothing can lead to.
void CheckNames(const Procedure& procedure, Diagnostics& found);

} // namespace vant
