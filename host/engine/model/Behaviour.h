#pragma once

#include "host/record/Value.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vant::host {

// What a parameter of a simulated engine does over time; docs/engines.md has the formulas. Times are in
// milliseconds since the engine began; durations in formulas are in seconds.

struct ScheduledValue {
    std::int64_t at = 0;
    Value value; ///< Of the parameter's kind.
};

struct Load {
    std::int64_t at = 0;
    double by = 0; ///< Added to the input from then on.
};

/// Before `at` the parameter keeps its own value.
struct Ramp {
    double from = 0;
    double to = 0;
    std::int64_t at = 0;
    std::int64_t over = 1; ///< At least 1.
};

/// One input of a sum: gain * x + offset, for the number x of the parameter `of`.
struct Term {
    std::string of;
    double gain = 1;
    double offset = 0;
};

/// `high` once the number of the parameter `of` has reached `on`, `low` once it has reached `off`.
struct Threshold {
    std::string of;
    double on = 1; ///< Differs from `off`, and lies on either side of it.
    double off = 0;
    Value high; ///< Of the parameter's kind, as `low`.
    Value low;
};

struct Behaviour {
    // The source; at most one. Without a source the parameter follows what is written to it.
    std::vector<std::string> follows; ///< Ids; the parameter that was written last leads.
    double gain = 1;
    double offset = 0;
    std::vector<Term> sum;
    std::optional<Threshold> threshold;
    std::optional<double> towards;
    std::optional<Ramp> ramp;
    std::vector<ScheduledValue>
        changes;                 ///< In order of time; the parameter has its own value before the first.
    std::vector<Value> sequence; ///< One for each read; the last one is repeated.

    // What happens between the source and the reading; for numbers only.
    std::int64_t delay = 0; ///< After which the source arrives; 0: at once.
    std::vector<Load> loads;
    double stick = 0; ///< How far the input must be away to be followed; 0: it always is.
    double lag = 0;   ///< Time constant in seconds; 0: none.
    double rate = 0;  ///< Units per second; 0: unlimited.
    double noise = 0;
    std::optional<int> decimals;

    /// Whether commands can write the parameter.
    bool FollowsWrites() const noexcept {
        return follows.empty() && sum.empty() && !threshold && !towards && !ramp && changes.empty() &&
               sequence.empty();
    }
    /// The ids of the parameters that the source depends on.
    std::vector<std::string> Followed() const;
};

/// A period in which reads of a parameter fail.
struct Outage {
    std::int64_t from = 0;
    std::optional<std::int64_t> until; ///< When reads succeed again; nothing if they never do.
};

} // namespace vant::host
