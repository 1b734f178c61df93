#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace vant::program {

/// How the program ends.
enum class ExitCode { Passed = 0, Failed = 1, WrongInput = 2, Broken = 3, Aborted = 130 };

/// What `vant run` was asked to do; file names in UTF-8.
struct RunOptions {
    std::string procedure;
    std::string engine;  ///< An engine file in place of the procedure's own engine; empty: none.
    std::string journal; ///< Empty: none is written.
    std::string module;
    bool registered =
        false; ///< Create the commands as they are registered with the system, not from `module`.
    bool json = false;
    bool answersMessages = false; ///< Messages are closed without waiting for the user.
    bool virtualTime = false;     ///< Nothing is waited for.
    double speed = 1;             ///< Otherwise: how many times as fast as real time.
};

/// Runs one procedure: the report goes to standard output, what is wrong to standard error.
ExitCode Run(const RunOptions& options);

} // namespace vant::program
