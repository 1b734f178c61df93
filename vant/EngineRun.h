#pragma once

#include "vant/ExitCode.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vant::program {

/// What `vant engine` was asked to do; texts in UTF-8, durations such as "500ms", "60s", "10min" or "1h".
struct EngineRunOptions {
    std::string file; ///< An engine, or a procedure with one.
    std::string duration = "60s";
    std::string every = "1s";
    std::optional<std::uint64_t> seed; ///< In place of the file's.
    std::vector<std::string> writes;   ///< "ID=VALUE@TIME"
    bool csv = false;
};

/// Lets an engine run by itself, without waiting, and prints its parameters over time to standard output.
/// Mistakes go to standard error, and nothing is printed then. Throws Failure.
ExitCode RunEngine(const EngineRunOptions& options);

} // namespace vant::program
