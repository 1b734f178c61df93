#pragma once

#include "host/procedure/Procedure.h"
#include "host/record/Journal.h"
#include "host/runner/CommandFactory.h"
#include "host/runner/ProcedureRun.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace vant::host {

/// Executes one procedure once, with all that it runs, and reports everything that happens through the
/// journal: the calls of the commands, and the events of the run as records of the service Runner. Message
/// boxes of this process that its commands open appear as prompts.
class Runner {
public:
    /// The procedure, the factory and the journal must outlive the runner. The procedure must have no errors.
    Runner(const Procedure& procedure, const CommandFactory& factory, Journal& journal,
           RunSettings settings = {})
        : m_shared(factory, journal, std::move(settings)), m_run(procedure, m_shared, nullptr) {}

    /// Shows the calls of the commands to an interceptor, which may have them fail. Before the run.
    void Intercept(CallGate::Interceptor interceptor) { m_run.Intercept(std::move(interceptor)); }

    /// Runs the procedure to its end on the calling thread, which should take part in virtual time. Call it
    /// once. When it returns, or passes on what the factory throws, every persistent command has been stopped
    /// and its thread has ended.
    Verdict Run() {
        struct Release {
            ~Release() { run.ReleaseData(); }
            ProcedureRun& run;
        };
        const MessageBoxes shown;
        const Release release{m_run};
        return m_run.Run().verdict;
    }

    /// Ends the run before the next command or step, and ends its waiting. From now on requests that would
    /// actuate something are refused with E_ABORT: commands, threads, writes of parameters. The commands
    /// under `finally` are run nevertheless. Any thread may call.
    void Abort() noexcept { m_run.End(Cause::Aborted); }

    /// The names of the host's objects that commands still hold; after a run, a command that leaks.
    std::vector<std::string> StillHeld() const { return m_run.StillHeld(); }

private:
    RunShared m_shared;
    ProcedureRun m_run;
};

} // namespace vant::host
