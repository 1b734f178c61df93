#pragma once

#include "host/procedure/Loading.h"
#include "host/runner/CommandFactory.h"
#include "host/suite/TestCase.h"

#include <span>
#include <string>
#include <vector>

namespace vant::host {

/// All that is to be tested.
struct LoadedSuite {
    std::vector<TestCase> cases;       ///< In the order of the paths, then of the files.
    std::vector<LoadedFiles> messages; ///< About the test files and the procedures that have mistakes.

    bool HasErrors() const { return !messages.empty(); }
};

/// Reads the tests that `paths` stand for (see FindTests) and the procedures that they run, and compares
/// these with the module. All mistakes of all files are found. Throws InputError if one of `paths` cannot be
/// read, and ModuleFailure.
LoadedSuite LoadSuite(std::span<const std::string> paths, const CommandFactory& commands);

} // namespace vant::host
