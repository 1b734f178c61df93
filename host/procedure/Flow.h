#pragma once

#include "host/procedure/CommandUse.h"
#include "host/procedure/Cycles.h"
#include "host/procedure/Procedure.h"

#include <cstddef>
#include <map>
#include <optional>
#include <span>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace vant::host {

/// A command at work in a step.
struct WorkingCommand {
    std::size_t command;
    bool onThread; ///< A command that runs on has run it, maybe after the step's commands.
};

/// A way from a step to another one, or back to it.
struct Lead {
    std::size_t target;
    std::string_view transition{}; ///< Empty: by a key other than `on`.
    bool isOwn = true;             ///< Taken by a key or a command of the step, not by one that runs on.
    bool carriesOwn = true;        ///< Beyond it, what the step has started may still run.
    bool carriesEarlier = true;    ///< Beyond it, what earlier steps have started may still run.
};

/// The transitions that the operator may choose when a step asks.
std::vector<std::string_view> ButtonsOf(const Step& step);

/// How a procedure runs: its steps and commands by their places in its maps, and what follows from what.
/// Every command and step that it names exists.
class Flow {
public:
    Flow(const Procedure& procedure, std::span<const CommandUse> commands);

    /// Whether all that is asked for below is known. Commands that run one another in very many ways are not
    /// followed to their end.
    bool IsWhole() const noexcept { return m_work > 0; }

    std::size_t StepCount() const noexcept { return m_steps.size(); }
    std::string_view StepId(std::size_t step) const noexcept { return m_stepIds[step]; }
    const Step& StepAt(std::size_t step) const noexcept { return *m_steps[step]; }
    const CommandUse& CommandAt(std::size_t command) const noexcept { return m_commands[command]; }
    bool IsStep(std::string_view id) const { return m_stepNumbers.contains(id); }
    /// Where a transition leads that is chosen in a step: by its `on`, by that of the procedure, or as the
    /// name of a step. Nothing: it is refused there. A step with `always` or `end` leads nowhere by a choice.
    std::optional<std::size_t> TargetOf(std::size_t step, std::string_view transition) const;
    std::size_t CommandNumber(std::string_view id) const { return m_commandNumbers.at(id); }

    /// The commands that a step runs, and those that they run; each once.
    std::vector<WorkingCommand> CommandsOf(std::size_t step);
    /// The commands that were started in an earlier step and may still run when this one begins.
    const std::vector<std::size_t>& StillRunning(std::size_t step) const noexcept {
        return m_stillRunning[step];
    }
    /// What the commands of a step, of these, and those that they run may choose.
    std::vector<std::string_view> Choices(std::span<const WorkingCommand> working,
                                          std::span<const std::size_t> stillRunning);

    /// The commands that may be at work in a step, those of earlier steps among them; each once.
    std::vector<WorkingCommand> AtWork(std::size_t step);

    /// Where a step leads by its keys and by the choices of the commands that may be at work in it.
    const std::vector<Lead>& LeadsOf(std::size_t step) const noexcept { return m_leads[step]; }
    Graph Leads() const;
    /// Which steps can be reached at all.
    std::vector<bool> Reached() const;

private:
    using Starts = std::map<std::size_t, std::vector<std::size_t>>; ///< Steps by the command they start.

    void AddKeys(std::size_t step);
    Starts AddChoices();
    void AddChoice(std::size_t step, std::string_view transition, bool isOwn);
    void AddChosenAnywhere(std::string_view transition);
    void FindStillRunning(const Starts& starts);
    void Follow(std::size_t command, const std::vector<std::size_t>& starts);
    void AddChoicesOnThreads();
    std::vector<WorkingCommand> Closure(std::vector<WorkingCommand> working);
    template <class Visit>
    void ForEachTransition(std::size_t command, Visit visit) const;

    const Procedure& m_procedure;
    std::span<const CommandUse> m_commands;
    std::vector<std::string_view> m_stepIds;
    std::vector<const Step*> m_steps;
    std::unordered_map<std::string_view, std::size_t> m_stepNumbers;
    std::unordered_map<std::string_view, std::size_t> m_commandNumbers;
    Graph m_runs; ///< From command to command.
    std::vector<std::vector<Lead>> m_leads;
    std::vector<std::size_t> m_chosenAnywhere; ///< The steps that commands on threads may choose in any step.
    std::vector<std::vector<std::size_t>> m_stillRunning;
    std::vector<std::size_t> m_seen; ///< The last closure in which a command was seen.
    std::size_t m_closures = 0;
    std::ptrdiff_t m_work = 5'000'000; ///< So many more edges are followed.
};

} // namespace vant::host
