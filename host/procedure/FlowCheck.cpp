#include "host/procedure/FlowCheck.h"

#include "host/procedure/Flow.h"
#include "host/procedure/GuardCheck.h"
#include "host/text/Printable.h"

#include <algorithm>
#include <fmt/format.h>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vant::host {

namespace {

/// Where a transition of a command is chosen.
struct TransitionUse {
    bool isTaken = false;                 ///< A step that runs the command has it.
    bool onThread = false;                ///< The command may choose it in any later step, too.
    std::optional<std::size_t> lacking{}; ///< A step that runs the command and does not have it.
};

class FlowCheck {
public:
    FlowCheck(const Procedure& procedure, std::span<const CommandUse> commands, Diagnostics& found)
        : m_procedure(procedure), m_commands(commands), m_flow(procedure, commands), m_found(found) {}

    void Check() {
        const std::size_t errors = m_found.Errors();
        for (std::size_t step = 0; step < m_flow.StepCount() && m_flow.IsWhole(); ++step)
            NoteTransitions(step, m_flow.CommandsOf(step));
        if (m_flow.IsWhole())
            CheckTransitions();
        // A wrong transition makes steps look out of reach.
        if (m_found.Errors() != errors)
            return;
        for (std::size_t step = 0; step < m_flow.StepCount() && m_flow.IsWhole(); ++step)
            CheckStep(step);
        if (!m_flow.IsWhole())
            return;
        CheckCommonKeys();
        const std::vector<bool> reached = m_flow.Reached();
        CheckReached(reached);
        CheckCircles(reached);
        CheckGuards(m_flow, reached, m_takesTime, m_found);
    }

private:
    using Working = std::vector<WorkingCommand>;

    void CheckStep(std::size_t number) {
        const Step& step = m_flow.StepAt(number);
        const Working working = m_flow.CommandsOf(number);
        CheckChoices(number, working);
        CheckTerminators(number, working);
        CheckMayFail(number, working);
        if (step.wait != Wait::Not)
            CheckWait(number, working);
        if (step.until && !step.timeout && !HasMaxTime() && !AnythingChooses(number, working))
            m_found.Warning(
                step.until->position,
                fmt::format("step {} waits for {} without 'timeout': add one, or 'maxTime' to the "
                            "procedure",
                            Name(number), Quoted(step.until->text)));
        m_takesTime.push_back(TakesTime(step, working));
    }

    std::string Name(std::size_t step) const { return Quoted(m_flow.StepId(step)); }

    bool HasMaxTime() const { return m_procedure.maxTime != defaultMaxTime; }

    // Transitions.

    bool Takes(std::size_t number, std::string_view transition) const {
        return m_flow.StepAt(number).always || m_flow.TargetOf(number, transition);
    }

    void NoteTransitions(std::size_t number, const Working& working) {
        for (const auto& [command, onThread] : working) {
            for (const NameUse& use : m_flow.CommandAt(command).names) {
                if (use.kind != PropertyKind::Transition || use.name.empty())
                    continue;
                TransitionUse& noted = m_transitions[&use];
                noted.onThread = noted.onThread || onThread || m_flow.CommandAt(command).traits->runsOn;
                m_choices.insert(use.name);
                if (Takes(number, use.name))
                    noted.isTaken = true;
                else if (!noted.lacking)
                    noted.lacking = number;
            }
        }
        for (const std::string_view button : ButtonsOf(m_flow.StepAt(number)))
            m_choices.emplace(button);
        for (const auto& [transition, target] : m_flow.StepAt(number).on)
            m_keys.insert(transition);
    }

    void CheckTransitions() {
        for (const auto& [transition, target] : m_procedure.on)
            m_keys.insert(transition);
        for (const CommandUse& command : m_commands) {
            for (const NameUse& use : command.names) {
                if (use.kind == PropertyKind::Transition && !use.name.empty())
                    CheckTransition(command, use);
            }
        }
        for (std::size_t number = 0; number < m_flow.StepCount(); ++number) {
            const Step& step = m_flow.StepAt(number);
            for (const Located& transition : step.retry.on)
                CheckLeads(number, transition);
            if (step.ask && !step.always) {
                for (const Located& button : step.ask->buttons)
                    CheckLeads(number, button);
            }
        }
    }

    void CheckLeads(std::size_t number, const Located& transition) {
        if (!m_flow.TargetOf(number, transition.text))
            m_found.Error(transition.position,
                          fmt::format("step {} has no transition {}{}", Name(number), Quoted(transition.text),
                                      m_found.Suggest(transition.text, m_flow.StepAt(number).on)));
    }

    void CheckTransition(const CommandUse& command, const NameUse& use) {
        const auto noted = m_transitions.find(&use);
        const bool anywhere = noted == m_transitions.end() || noted->second.onThread;
        const bool exists = m_keys.contains(use.name) || m_flow.IsStep(use.name);
        if (anywhere ? exists : noted->second.isTaken) {
            if (!anywhere && noted->second.lacking)
                m_found.Warning(use.property->value.position,
                                fmt::format("step {} runs command {}, but has no transition {}",
                                            Name(*noted->second.lacking), Quoted(command.id),
                                            Quoted(use.name)));
            return;
        }
        const std::string suggestion = exists ? std::string() : m_found.Suggest(use.name, m_keys);
        m_found.Error(use.property->value.position,
                      fmt::format("no step that runs command {} has the transition {}{}", Quoted(command.id),
                                  Quoted(use.name), suggestion));
    }

    /// Keys of the procedure's `on`.
    void CheckCommonKeys() {
        for (const auto& [transition, target] : m_procedure.on) {
            if (!m_choices.contains(transition))
                m_found.Warning(target.position,
                                "no command that a step runs chooses the transition " + Quoted(transition));
        }
    }

    bool AnythingChooses(std::size_t number, const Working& working) {
        return !m_flow.Choices(working, m_flow.StillRunning(number)).empty();
    }

    void CheckChoices(std::size_t number, const Working& working) {
        const Step& step = m_flow.StepAt(number);
        if (step.on.empty())
            return;
        const std::vector<std::string_view> choices = m_flow.Choices(working, m_flow.StillRunning(number));
        std::set<std::string_view> known(choices.begin(), choices.end());
        for (const std::string_view button : ButtonsOf(step))
            known.insert(button);
        for (const auto& [transition, target] : step.on) {
            if (!known.contains(transition))
                m_found.Warning(target.position,
                                fmt::format("no command that runs in step {} chooses the transition {}",
                                            Name(number), Quoted(transition)));
        }
    }

    // Commands that run on.

    void CheckTerminators(std::size_t number, const Working& working) {
        const Step& step = m_flow.StepAt(number);
        for (const auto& [command, onThread] : working) {
            const CommandUse& terminator = m_flow.CommandAt(command);
            if (onThread || MayFail(step, terminator.id, "TerminateCommand"))
                continue;
            for (const NameUse& use : terminator.names) {
                if (use.kind == PropertyKind::PersistentCommand && !MayRun(number, working, use.name))
                    m_found.Warning(step.position,
                                    fmt::format("command {} cannot be running in step {}, which ends it",
                                                Quoted(use.name), Name(number)));
            }
        }
    }

    static bool MayFail(const Step& step, std::string_view command, std::string_view operation) {
        return std::any_of(step.mayFail.begin(), step.mayFail.end(), [&](const Located& each) {
            return each.text == command || each.text == operation;
        });
    }

    bool MayRun(std::size_t number, const Working& working, std::string_view id) const {
        const std::size_t command = m_flow.CommandNumber(id);
        const std::vector<std::size_t>& earlier = m_flow.StillRunning(number);
        return std::find(earlier.begin(), earlier.end(), command) != earlier.end() ||
               Contains(working, command);
    }

    static bool Contains(const Working& working, std::size_t command) {
        return std::any_of(working.begin(), working.end(),
                           [command](const WorkingCommand& each) { return each.command == command; });
    }

    void CheckMayFail(std::size_t number, const Working& working) {
        for (const Located& each : m_flow.StepAt(number).mayFail) {
            if (!m_procedure.commands.contains(each.text))
                continue; // An operation.
            if (!MayRun(number, working, each.text) && m_flow.StillRunning(number).empty())
                m_found.Warning(each.position, fmt::format("step {} does not run command {}", Name(number),
                                                           Quoted(each.text)));
        }
    }

    void CheckWait(std::size_t number, const Working& working) {
        const Step& step = m_flow.StepAt(number);
        const bool waitsForAll = step.wait == Wait::Transition;
        const bool startsAny =
            std::any_of(working.begin(), working.end(), [this](const WorkingCommand& each) {
                return m_flow.CommandAt(each.command).traits->runsOn;
            });
        if (!startsAny && !(waitsForAll && !m_flow.StillRunning(number).empty()))
            m_found.Warning(
                step.position,
                fmt::format("step {} has nothing to wait for: no command runs on in it", Name(number)));
        else if (!step.timeout && !HasMaxTime())
            CheckWaitEnds(number, working);
    }

    void CheckWaitEnds(std::size_t number, const Working& working) {
        const Step& step = m_flow.StepAt(number);
        if (step.wait == Wait::Transition && AnythingEndsWait(number, working))
            return;
        for (const auto& [command, onThread] : working) {
            const CommandUse& running = m_flow.CommandAt(command);
            if (running.traits->ends || IsTerminated(number, working, running.id) ||
                MayFail(step, running.id, running.id))
                continue;
            m_found.Warning(
                step.position,
                fmt::format("step {} may wait for ever: command {} does not end by itself; add 'timeout', or "
                            "'maxTime' to the procedure",
                            Name(number), Quoted(running.id)));
            return;
        }
    }

    /// Whether a command that ends by itself, or one that it runs, chooses a transition.
    bool AnythingEndsWait(std::size_t number, const Working& working) {
        std::vector<std::size_t> ending;
        Working own;
        for (const WorkingCommand& each : working) {
            const ClassTraits& traits = *m_flow.CommandAt(each.command).traits;
            if (traits.runsOn && traits.ends)
                ending.push_back(each.command);
            else if (traits.ends)
                own.push_back(each);
        }
        for (const std::size_t command : m_flow.StillRunning(number)) {
            if (m_flow.CommandAt(command).traits->ends)
                ending.push_back(command);
        }
        return !m_flow.Choices(own, ending).empty();
    }

    /// Whether a command that is at work in the step may end this one.
    bool IsTerminated(std::size_t number, const Working& working, std::string_view id) {
        const auto ends = [&](std::size_t command) {
            const std::vector<NameUse>& names = m_flow.CommandAt(command).names;
            return std::any_of(names.begin(), names.end(), [id](const NameUse& use) {
                return use.kind == PropertyKind::PersistentCommand && use.name == id;
            });
        };
        return std::any_of(working.begin(), working.end(),
                           [&](const WorkingCommand& each) { return ends(each.command); }) ||
               !m_flow.StillRunning(number).empty();
    }

    // Steps.

    bool TakesTime(const Step& step, const Working& working) const {
        return step.procedure || step.ask || step.delay.value_or(0) > 0 || step.until ||
               step.wait != Wait::Not || step.retry.after > 0 ||
               std::any_of(working.begin(), working.end(), [this](const WorkingCommand& each) {
                   return !each.onThread && m_flow.CommandAt(each.command).traits->takesTime;
               });
    }

    void CheckReached(const std::vector<bool>& reached) {
        bool ends = false;
        for (std::size_t step = 0; step < reached.size(); ++step)
            ends = ends || (reached[step] && m_flow.StepAt(step).end);
        for (const std::size_t step : Beginnings(m_flow.Leads(), reached)) {
            if (ends || !m_flow.StepAt(step).end)
                m_found.Warning(m_flow.StepAt(step).position, "nothing leads to step " + Name(step));
        }
        if (!ends)
            m_found.Warning(m_procedure.start.position,
                            "no step with 'end' can be reached: the procedure ends "
                            "only if something fails");
    }

    /// A command that runs on ends with its choice, so it closes no circle.
    void CheckCircles(const std::vector<bool>& reached) {
        Graph quick(m_flow.StepCount());
        for (std::size_t step = 0; step < quick.size(); ++step) {
            for (const Lead& lead : m_flow.LeadsOf(step)) {
                if (lead.isOwn && reached[step] && !m_takesTime[step] && !m_takesTime[lead.target])
                    quick[step].push_back(lead.target);
            }
        }
        const std::vector<std::size_t> components = StrongComponents(quick);
        std::set<std::size_t> reported;
        for (std::size_t step = 0; step < quick.size(); ++step) {
            for (const std::size_t next : quick[step]) {
                if (components[step] == components[next] && reported.insert(components[step]).second)
                    ReportCircle(step, next);
            }
        }
    }

    void ReportCircle(std::size_t step, std::size_t next) {
        const std::string way =
            step == next ? "leads to itself" : "leads to step " + Name(next) + " and back";
        m_found.Warning(m_flow.StepAt(step).position,
                        fmt::format("step {} {}, and no time passes: add 'delay'", Name(step), way));
    }

    const Procedure& m_procedure;
    const std::span<const CommandUse> m_commands;
    Flow m_flow;
    Diagnostics& m_found;
    std::map<const NameUse*, TransitionUse> m_transitions;
    std::set<std::string> m_keys;         ///< The transitions of all steps and of the procedure.
    std::set<std::string_view> m_choices; ///< What the commands that steps run may choose.
    std::vector<bool> m_takesTime;
};

} // namespace

void CheckFlow(const Procedure& procedure, std::span<const CommandUse> commands, Diagnostics& found) {
    FlowCheck(procedure, commands, found).Check();
}

} // namespace vant::host
