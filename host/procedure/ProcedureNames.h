#pragma once

#include "host/procedure/Procedure.h"
#include "host/text/Diagnostic.h"

#include <string_view>

namespace vant::host {

/// Looks up every step, command and condition set that a procedure names outside the properties of commands:
/// an error for each one that does not exist.
void CheckNames(const Procedure& procedure, Diagnostics& found);

/// Whether a service has an operation of that name.
bool IsOperation(std::string_view name);

} // namespace vant::host
