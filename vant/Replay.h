#pragma once

#include "vant/ExitCode.h"

#include <string>

namespace vant::program {

/// What `vant replay` was asked to do; file names in UTF-8.
struct ReplayOptions {
    std::string journal;
    std::string procedure;
    std::string engine; ///< The file of the engine of the recording; empty: the procedure's own.
    std::string module;
    std::string time = "100ms"; ///< A duration.
    double value = 0;
    bool json = false;
};

/// Runs a procedure in virtual time on what a journal has recorded, and prints in what the new run differs:
/// Passed if it does not, else Failed. Throws Failure.
ExitCode Replay(const ReplayOptions& options);

} // namespace vant::program
