#pragma once

#include "vant/ProgramText.h"

#include <string>

namespace vant::program {

/// The manual page of the program, for `man`.
std::string ManualPage(const CommandText& program);

} // namespace vant::program
