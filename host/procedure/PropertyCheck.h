#pragma once

#include "host/procedure/Procedure.h"
#include "host/text/Diagnostic.h"

namespace vant::host {

/// Compares every command of a procedure with the tables of classes and properties: an error for an unknown
/// class, an unknown property, a property that is missing, and two that exclude each other. Returns whether
/// all commands are whole.
bool CheckProperties(const Procedure& procedure, Diagnostics& found);

} // namespace vant::host
