#pragma once

#include "host/procedure/Procedure.h"
#include "host/runner/CommandFactory.h"
#include "host/text/Diagnostic.h"

#include <stdexcept>

namespace vant::host {

/// The module returned a result that no procedure can explain.
class ModuleFailure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Asks the module about every command of a procedure that has been compared with the tables: an error for a
/// class that the module lacks and, if there are no other errors, for properties that it does not accept.
/// Nothing is executed. Throws ModuleFailure if a class that exists cannot be created.
void CheckCommands(const Procedure& procedure, const CommandFactory& factory, Diagnostics& found);

} // namespace vant::host
