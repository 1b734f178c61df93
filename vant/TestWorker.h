#pragma once

#include "vant/ExitCode.h"

#include <string>

namespace vant::program {

/// Runs the cases that `vant test` writes to standard input, and replies on standard output, until the input
/// ends. Throws Failure.
ExitCode WorkForTest(const std::string& module);

} // namespace vant::program
