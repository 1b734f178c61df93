#pragma once

#include "vant/ExitCode.h"

namespace CLI {
class App;
}

namespace vant::program {

/// Declares the subcommands and options of the program. The parser performs the subcommand that it finds and
/// stores how that ended in `result`, which lives as long as `app`.
void DeclareCommandLine(CLI::App& app, ExitCode& result);

} // namespace vant::program
