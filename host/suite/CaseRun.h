#pragma once

#include "host/record/Json.h"
#include "host/runner/CommandFactory.h"
#include "host/suite/Fault.h"
#include "host/suite/FaultInjection.h"
#include "host/suite/ProcedureShelf.h"
#include "host/suite/TestCase.h"

#include <cstddef>
#include <optional>

namespace vant::host {

/// What is wanted of a run besides its result.
struct CaseWishes {
    bool coverage = false;               ///< What it has reached of the procedures.
    std::optional<std::size_t> faults{}; ///< The faults that can happen in it, see FaultFinder::Faults.
};

/// What it takes to run a case, for CaseRunner in another process.
Json RequestOf(const TestCase& toRun, CaseWishes wishes = {});
/// The same with a fault in the run.
Json RequestOf(const TestCase& toRun, const Fault& fault);

/// Runs cases one after another in virtual time, each beginning at 0. The process must have begun to use
/// virtual time before it loaded the module.
class CaseRunner {
public:
    /// `commands` must outlive the runner.
    explicit CaseRunner(const CommandFactory& commands) : m_commands(commands) {}

    /// Runs the case that RequestOf has described. The calling thread must not take part in virtual time.
    /// Returns {"result": ...}: the result of the run as ResultReport makes it, without the details of its
    /// steps but with `path`, the steps in the order in which they were entered, and `unusedAnswers`, the
    /// numbers of the answers that no prompt has used. As they are wanted, also "coverage", what RunCoverage
    /// returns, and "faults". With a fault the result has only `hasHappened`, and the `verdict` and `left` of
    /// ResultReport. If the module or the host failed: {"failure": TEXT}.
    Json Run(const Json& request);

private:
    /// The reply to the request, unless the module or the host fails.
    Json RunLoaded(const Json& request);
    Json RunWithoutFault(const Json& request, const LoadedProcedure& loaded);
    Json RunWithFault(const Json& request, const LoadedProcedure& loaded);
    /// Runs the procedure to its end. Returns the numbers of the answers that no prompt has used, from 1.
    /// `failing`: null if every call is to be performed.
    Json RunOnce(const Json& request, const Procedure& procedure, Journal& journal, FailingCall* failing);

    const CommandFactory& m_commands;
    ProcedureShelf m_procedures;
};

} // namespace vant::host
