#pragma once

#include "host/suite/FaultResults.h"
#include "host/suite/WorkerPool.h"

#include <vector>

namespace vant::program {

/// Runs the cases that have passed again with each fault that can happen in them, and prints what came of it.
host::FaultResults TestWithFaults(const std::vector<host::TestCase>& cases,
                                  const std::vector<host::CaseOutcome>& outcomes,
                                  const host::WorkerSettings& settings);

} // namespace vant::program
