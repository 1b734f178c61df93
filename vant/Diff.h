#pragma once

#include "vant/ExitCode.h"

#include <string>

namespace vant::program {

/// What `vant diff` was asked to do; file names in UTF-8.
struct DiffOptions {
    std::string a;
    std::string b;
    std::string time = "100ms"; ///< A duration.
    double value = 0;
    bool json = false;
};

/// Compares two journals and prints the differences: Passed if there are none, else Failed. Throws Failure.
ExitCode Diff(const DiffOptions& options);

} // namespace vant::program
