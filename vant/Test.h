#pragma once

#include "vant/ExitCode.h"

#include <cstddef>
#include <string>
#include <vector>

namespace vant::program {

/// What `vant test` was asked to do; file names in UTF-8.
struct TestOptions {
    std::vector<std::string> paths; ///< Empty: the current folder.
    std::string module;
    std::size_t jobs = 0; ///< 0: as many as the machine has processors.
    std::string filter;   ///< Only cases whose name contains it.
    std::string caseTimeout = "60s";
    std::string json;             ///< A file for the results as JSON; empty: none.
    std::string junit;            ///< A file for the results as JUnit XML; empty: none.
    bool coverage = false;        ///< Print what was reached of the procedures.
    double failUnder = 0;         ///< Fail if less was reached, in percent.
    bool faults = false;          ///< Run the cases with faults, too.
    std::size_t faultRepeats = 8; ///< So many of the calls that a command repeats fail; 0: all.
    bool update = false;          ///< Test files are changed to expect what has come.
    bool worker = false;          ///< Be a worker of such a program.
};

/// Runs the cases of test files and procedures, and prints what came of them. Throws Failure.
ExitCode Test(const TestOptions& options);

} // namespace vant::program
