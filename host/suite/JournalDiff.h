#pragma once

#include "host/record/Journal.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace vant::host {

/// Something in which two journals differ.
struct JournalDifference {
    std::string place; ///< Such as "step measure" or "thread Persistent Thread 1".
    std::string text;  ///< In words, with A for the first journal and B for the second one. Printable.
};

/// What does not count as a difference.
struct DiffTolerance {
    std::int64_t time = 100; ///< Milliseconds, between times and durations.
    double value = 0;        ///< Between numbers.
};

/// Compares two journals by what they mean: the path of the steps, what each step did and how long it took,
/// values, results and the ending, in the order of the steps. What threads of commands did is compared by how
/// often each call came and by its last value, since the order of calls on different threads may differ.
std::vector<JournalDifference> CompareJournals(std::span<const Record> a, std::span<const Record> b,
                                               const DiffTolerance& tolerance);

} // namespace vant::host
