#pragma once

#include "host/procedure/Procedure.h"
#include "host/runner/Measurements.h"

#include <string>
#include <vector>

namespace vant::host {

/// "passed", "failed", "error" or "aborted".
const char* NameOf(Verdict verdict);

/// How a procedure has ended, and why.
struct Ending {
    Verdict verdict = Verdict::Error;
    std::string reason{};
};

/// What a verdict is made of. Empty texts stand for what has not failed.
struct Findings {
    Ending ending; ///< That of the steps.
    std::vector<Measurements::Result> measured;
    std::vector<std::string> failedProcedures; ///< What called ones that failed ended with.
    std::string failedCalls;                   ///< Host calls and commands that could not do their work.
    std::string failedCleanUp;
};

/// What the ending of the steps becomes by measurements and failures.
Ending Judge(const Findings& findings);

} // namespace vant::host
