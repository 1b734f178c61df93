#pragma once

#include "host/record/Value.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vant::host {

// What a parameter of a simulated engine does over time; docs/engines.md gives the formulas. Times are
// milliseconds since the engine began, durations in formulas seconds.

struct ScheduledValue {
    std::int64_t at = 0;
    Value value; ///< Of the parameter's kind.
};

struct Load {
    std::int64_t at = 0;
    double by = 0; ///< Added to the input from then on.
};

/// Until `at` the parameter's own value.
struct Ramp {
    double from = 0;
    double to = 0;
    std::int64_t at = 0;
    std::int64_t over = 1; ///< At least 1.
};

struct Behaviour {
    // The source, at most one; without one the parameter follows what is written to it.
    std::vector<std::string> follows; ///< Ids; of several, the one that was written last.
    double gain = 1;
    double offset = 0;
    std::optional<double> towards;
    std::optional<Ramp> ramp;
    std::vector<ScheduledValue> changes; ///< In the order of time; before the first, the parameter's value.
    std::vector<Value> sequence;         ///< One for each read; the last stays.

    // The way from the source to what is read; only for numbers.
    std::vector<Load> loads;
    double lag = 0;  ///< Time constant in seconds; 0: none.
    double rate = 0; ///< Units per second; 0: at once.
    double noise = 0;
    std::optional<int> decimals;

    /// Whether commands can write the parameter.
    bool FollowsWrites() const noexcept {
        return follows.empty() && !towards && !ramp && changes.empty() && sequence.empty();
    }
};

/// A time in which the reads of a parameter fail.
struct Outage {
    std::int64_t from = 0;
    std::optional<std::int64_t> until; ///< The end, at which reads succeed again; nothing: they never do.
};

} // namespace vant::host
