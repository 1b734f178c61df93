#pragma once

#include "host/suite/FaultResults.h"

#include <cstdint>
#include <ostream>
#include <vector>

namespace vant::program {

/// Prints what came of the runs with faults: a table by what failed, and every survivor.
void PrintFaults(std::ostream& out, const std::vector<host::TestCase>& cases,
                 const host::FaultResults& results, std::int64_t milliseconds);

} // namespace vant::program
