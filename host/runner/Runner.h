#pragma once

#include "host/procedure/Procedure.h"
#include "host/record/CallScope.h"
#include "host/record/Journal.h"
#include "host/runner/CommandFactory.h"
#include "host/services/Services.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vant::host {

/// The greatest depth of commands that run or start one another; a thread that a command starts is one level
/// deeper than the command. RunCommand returns HRESULT_FROM_WIN32(ERROR_STACK_OVERFLOW) to a request that
/// would go deeper.
inline constexpr std::size_t maxCommandDepth = 32;

/// "passed", "failed" or "aborted".
const char* NameOf(Verdict verdict);

/// Executes one procedure once, and reports everything that happens through the journal: the calls of the
/// commands, and the events of the run as records of the service Runner.
class Runner {
public:
    /// All three must outlive the runner. The procedure must have no errors.
    Runner(const Procedure& procedure, const CommandFactory& factory, Journal& journal);

    /// Shows the calls of the commands to an interceptor, which may have them fail. Before the run.
    void Intercept(CallGate::Interceptor interceptor) { m_services.gate.Intercept(std::move(interceptor)); }

    /// Runs the procedure to its end on the calling thread, which should take part in virtual time. Call it
    /// once. When it returns, or passes on what the factory throws, every persistent command has been stopped
    /// and its thread has ended.
    Verdict Run();

    /// Ends the run before the next command or step, and ends its waiting. From now on requests that would
    /// actuate something are refused with E_ABORT: commands, threads, writes of parameters. Any thread may
    /// call.
    void Abort() noexcept;

    /// The names of the host's objects that commands still hold; after a run, a command that leaks.
    std::vector<std::string> StillHeld() const { return m_services.StillHeld(); }

private:
    struct Ending {
        Verdict verdict;
        std::string reason;
    };

    Ending RunSteps();
    /// Runs the commands of a step, up to the first one that fails or after which a transition has been
    /// chosen. Returns the id of the one that failed; nothing if none did.
    std::optional<std::string> RunCommandsOf(const Step& step);
    /// The step to which `step` leads, null if there is none. `key` becomes the key of the file that names
    /// it.
    const std::string* TargetOf(const Step& step, const std::optional<std::string>& chosen, bool succeeded,
                                std::string& key) const;
    /// Waits for what the step says, or until the run is aborted.
    void AwaitCommandsOf(const Step& step);
    void EndPersistentCommands();
    HRESULT RunCommand(const std::string& id);
    /// Gives `scope` the object before it is executed. `phase` becomes the last phase that was begun.
    HRESULT CreateAndExecute(const Command& command, CComPtr<IVantCommand>& object, CommandScope& scope,
                             const char*& phase);
    /// On the thread that has ended.
    void RecordThreadEnded(std::uint32_t cookie, HRESULT result) noexcept;
    void RecordEvent(const char* event, std::vector<Argument> arguments, std::optional<HRESULT> result = {});

    const Procedure& m_procedure;
    const CommandFactory& m_factory;
    Journal& m_journal;
    std::atomic<bool> m_aborted{false};
    std::atomic<bool> m_ending{false}; ///< Whether the run has begun to end, aborted or not.
    Services m_services;               ///< Destroyed first: its threads may use everything above.
};

} // namespace vant::host
