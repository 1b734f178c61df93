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
    std::vector<LoadedFiles> messages; ///< About the test files, and the procedures that have mistakes.

    bool HasErrors() const;
};

/// Reads the tests that `paths` stand for (see FindTests) and the procedures that they run, and compares
/// these with the module. All mistakes of all files are found. Throws InputError if one of `paths` cannot be
/// read, and ModuleFailure.
LoadedSuite LoadSuite(std::span<const std::string> paths, const CommandFactory& commands);

/// Reads a test file for the sake of the messages, with the procedures that it names. That it cannot be read
/// is one of them.
std::vector<LoadedFiles> CheckTestFile(const std::string& file);

} // namespace vant::host
