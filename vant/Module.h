#pragma once

#include "host/runner/LoadedModule.h"

#include <memory>
#include <string>

namespace vant::program {

/// Loads the module of the command classes from a file, whose name is UTF-8. Throws Failure.
std::unique_ptr<host::LoadedModule> OpenModule(const std::string& file);

} // namespace vant::program
