#pragma once

#include "host/record/Json.h"
#include "host/runner/CommandFactory.h"
#include "host/suite/ProcedureShelf.h"
#include "host/suite/TestCase.h"

namespace vant::host {

/// What is wanted of a run besides its result.
struct CaseWishes {
    bool coverage = false; ///< What it has reached of the procedures.
};

/// What it takes to run a case, for CaseRunner in another process.
Json RequestOf(const TestCase& toRun, CaseWishes wishes = {});

/// Runs cases one after another in virtual time, each beginning at 0. The process must have begun to use
/// virtual time before it loaded the module.
class CaseRunner {
public:
    /// `commands` must outlive the runner.
    explicit CaseRunner(const CommandFactory& commands) : m_commands(commands) {}

    /// Runs the case that RequestOf has described. Returns {"result": ...}: the result of the run as
    /// ResultReport makes it, without the details of its steps but with `path`, the steps in the order in
    /// which they were entered, and `unusedAnswers`, the numbers of the answers that no prompt has used. If
    /// it is wanted, also "coverage": what RunCoverage returns. If the module or the host failed:
    /// {"failure": TEXT}. The calling thread must not take part in virtual time.
    Json Run(const Json& request);

private:
    /// The reply to the request, unless the module or the host fails.
    Json RunLoaded(const Json& request);

    const CommandFactory& m_commands;
    ProcedureShelf m_procedures;
};

} // namespace vant::host
