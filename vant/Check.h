#pragma once

#include "vant/ExitCode.h"

#include <string>
#include <vector>

namespace vant::program {

/// What `vant check` was asked to do; file names in UTF-8.
struct CheckOptions {
    std::vector<std::string> files;
    std::string engine; ///< An engine file in place of the procedures' own engines; empty: none.
    bool json = false;
    bool strict = false; ///< Warnings count as mistakes.
};

/// Checks procedures and engines, and prints what is wrong with them: to standard error, or as JSON to
/// standard output. Throws Failure.
ExitCode Check(const CheckOptions& options);

} // namespace vant::program
