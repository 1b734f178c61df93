#pragma once

#include "host/procedure/Procedure.h"
#include "host/runner/CommandFactory.h"
#include "host/text/Diagnostic.h"

#include <stdexcept>

namespace vant::host {

/// The module answered a request in a way that no procedure can explain.
class ModuleFailure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Asks the command classes themselves about every command of a procedure: whether the class exists, whether
/// it has each property, whether the set is complete. Nothing is executed. Throws ModuleFailure where a class
/// that exists cannot be created.
void CheckCommands(const Procedure& procedure, const CommandFactory& factory, Diagnostics& found);

} // namespace vant::host
