#pragma once

#include "vant/ExitCode.h"

#include <string>

namespace vant::program {

/// What `vant register` and `vant unregister` were asked to do.
struct RegistrationOptions {
    std::string module;    ///< file name in UTF-8
    bool userOnly = false; ///< For the current user instead of the machine.
};

/// Both let the module do it, through its exported entry points, and say what has happened. They throw
/// Failure.
ExitCode Register(const RegistrationOptions& options);
ExitCode Unregister(const RegistrationOptions& options);

/// Prints a line for every registered class: ProgID, class identifier, module. Throws Failure.
ExitCode PrintCatalogue();

} // namespace vant::program
