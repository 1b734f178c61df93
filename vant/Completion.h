#pragma once

#include "vant/ProgramText.h"

#include <string>

namespace vant::program {

/// The completion script of a shell, for its start-up file: subcommands, options, files and command classes.
std::string BashCompletion(const CommandText& program);
std::string ZshCompletion(const CommandText& program);
std::string FishCompletion(const CommandText& program);
std::string PowerShellCompletion(const CommandText& program);

} // namespace vant::program
