#pragma once

#include "vant/ExitCode.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vant::program {

/// What `vant run` was asked to do; file names in UTF-8.
struct RunOptions {
    std::string procedure;
    std::string engine;  ///< An engine file in place of the procedure's own engine; empty: none.
    std::string journal; ///< Empty: none is written.
    bool force = false;  ///< The journal may replace a file that is not a journal.
    std::string module;
    bool registered = false; ///< Commands come from the classes registered with the system, not `module`.
    bool json = false;
    bool quiet = false;          ///< Only the verdict, and measurements that failed or are missing.
    bool verbose = false;        ///< Every host call, too.
    bool strict = false;         ///< Warnings refuse the run, too.
    bool closesMessages = false; ///< No operator: messages are closed at once, and standard answers count.
    std::string answers;         ///< A file of answers in place of an operator; empty: none.
    bool virtualTime = false;    ///< Nothing is waited for.
    double speed = 1;            ///< Otherwise: how many times as fast as real time.
    std::string maxTime;         ///< A duration in place of the procedure's; empty: none.
    std::optional<std::int64_t> maxSteps;
    bool allowFailedCalls = false;
    std::vector<std::string> tags; ///< Each "KEY=VALUE".
};

/// Runs one procedure: the report goes to standard output, mistakes in the files to standard error. Throws
/// Failure.
ExitCode Run(const RunOptions& options);

} // namespace vant::program
