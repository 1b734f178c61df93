#pragma once

#include "vant/ExitCode.h"

#include <string>

namespace vant::program {

/// What `vant classes` was asked to do.
struct ClassesOptions {
    std::string name; ///< Of one class; empty: all.
    bool json = false;
};

/// Prints the command classes and what their properties mean. Throws Failure for a class that does not exist.
ExitCode PrintClasses(const ClassesOptions& options);

} // namespace vant::program
