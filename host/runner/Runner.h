#pragma once

#include "host/procedure/Procedure.h"
#include "host/record/CallScope.h"
#include "host/record/Journal.h"
#include "host/runner/CommandFactory.h"
#include "host/services/Services.h"

#include <atomic>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace vant::host {

/// So many commands may run inside one another on one thread; RunCommand answers
/// HRESULT_FROM_WIN32(ERROR_STACK_OVERFLOW) to a request for one more.
inline constexpr std::size_t maxCommandDepth = 32;

/// Executes one procedure once. What happens is told through the journal alone: the calls of the commands,
/// and as records of the service "Runner" the events ProcedureStarted, DataGiven, StepEntered,
/// ConditionsGiven, CommandCreated, CommandInitialized, PropertySet, CommandEnded, ThreadEnded,
/// TransitionFollowed, DataLeft and ProcedureEnded.
class Runner {
public:
    /// All three must outlive the runner. The procedure must be free of errors.
    Runner(const Procedure& procedure, const CommandFactory& factory, Journal& journal);

    /// Runs the procedure to its end on the calling thread, which should take part in virtual time. Once.
    /// When it returns, or passes on what the factory throws, every persistent command has been stopped, and
    /// its thread has ended.
    Verdict Run();

    /// Asks the run to end before the next command or step, and ends its waiting. What would actuate
    /// something after that is refused with E_ABORT: commands, threads, writes of parameters. Any thread
    /// may call.
    void Abort() noexcept;

    /// The names of the host's objects that commands still hold; after a run, a command that leaks.
    std::vector<std::string> StillHeld() const { return m_services.StillHeld(); }

private:
    struct Ending {
        Verdict verdict;
        std::string reason;
    };

    Ending RunSteps();
    /// Runs the commands of a step, up to the first that fails or after which a transition has been chosen.
    /// The id of the one that failed, else nothing.
    std::optional<std::string> RunCommandsOf(const Step& step);
    /// The step to which `step` leads; null where it leads to none. `key` becomes the key that says so.
    const std::string* TargetOf(const Step& step, const std::optional<std::string>& chosen, bool succeeded,
                                std::string& key) const;
    /// Waits for what the step says, or until the run is aborted.
    void AwaitCommandsOf(const Step& step);
    void EndPersistentCommands();
    HRESULT RunCommand(const std::string& id);
    /// Makes the command and executes it. `scope` knows the object while it executes.
    HRESULT Perform(const Command& command, CComPtr<IVantCommand>& object, CommandScope& scope,
                    const char*& phase);
    void Tell(const char* event, std::vector<Argument> arguments, std::optional<HRESULT> result = {});

    const Procedure& m_procedure;
    const CommandFactory& m_factory;
    Journal& m_journal;
    std::atomic<bool> m_aborted{false};
    std::atomic<bool> m_ending{false}; ///< The run has begun to end, aborted or not.
    Services m_services;               ///< Its threads may use everything above until it ends.
};

} // namespace vant::host
