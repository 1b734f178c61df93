#pragma once

#include "host/suite/Coverage.h"

#include <ostream>
#include <vector>

namespace vant::program {

/// Prints what tests have reached of each procedure as a table, and what they have not reached, line by line.
void PrintCoverage(std::ostream& out, const std::vector<host::CoveredProcedure>& procedures);

} // namespace vant::program
