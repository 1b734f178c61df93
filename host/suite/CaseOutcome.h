#pragma once

#include "host/record/Json.h"
#include "host/suite/Mismatch.h"
#include "host/suite/TestCase.h"
#include "host/suite/WorkerPool.h"

#include <string>
#include <vector>

namespace vant::host {

enum class CaseStatus {
    NotRun, ///< The user ended the tests before.
    Passed, ///< The run has led to what was expected.
    Failed,
    Error ///< There is no result: a worker, the module or the host failed.
};

/// "not run", "passed", "failed" or "error".
const char* NameOf(CaseStatus status);

/// What became of a case.
// A false alarm: Json declares its default constructor noexcept, and a null value allocates nothing.
// NOLINTNEXTLINE(bugprone-exception-escape)
struct CaseOutcome {
    CaseStatus status = CaseStatus::NotRun;
    std::vector<Mismatch> mismatches{}; ///< If it failed.
    std::string failure{};              ///< If there is an error.
    Json result{};                      ///< Of the run, as CaseRunner returns it; null if there is none.
    Json coverage{};                    ///< What the run has reached; null if that is not known.
    Json faults{};                      ///< Those that can happen in it; null if that is not known.
};

/// The outcome of a case whose request got this reply of a worker.
CaseOutcome OutcomeOf(const TestCase& tested, const WorkerReply& reply);

/// An outcome with a result, judged by what this case expects.
CaseOutcome Judged(const TestCase& tested, CaseOutcome outcome);

} // namespace vant::host
