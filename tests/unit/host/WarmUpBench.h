#pragma once

#include "tests/unit/host/RunOutcome.h"

#include <string>

namespace vant::host {

/// A procedure that starts with step "s", which a test adds. It has an engine that warms up, with a sensor
/// that is lost after 5 s and a valve; commands that use them; and the steps "good" and "bad", which end it.
extern const std::string warmUpBench;

/// Runs the bench's procedure with `steps`, which are tables, and `top`, which are keys of the procedure.
RunOutcome RunSteps(const std::string& steps, const std::string& top = "", const RunSettings& settings = {},
                    const RecordFilter& abortAt = {});

} // namespace vant::host
