#include "host/procedure/GuardCheck.h"

#include "host/text/Printable.h"

#include <algorithm>
#include <fmt/format.h>
#include <map>
#include <string_view>

namespace vant::host {

namespace {

using Steps = std::vector<std::size_t>;

/// Follows one monitor.
class Guard {
public:
    Guard(Flow& flow, std::size_t command, std::string_view transition, const std::vector<bool>& takesTime,
          Diagnostics& found)
        : m_flow(flow), m_command(command), m_transition(transition), m_takesTime(takesTime), m_found(found),
          m_isReported(flow.StepCount()) {}

    /// `endings` are the steps whose own commands end it: it is not followed into them.
    void Follow(const Steps& starts, const Steps& endings) {
        std::vector<bool> isSeen(m_flow.StepCount());
        for (const std::size_t step : endings)
            isSeen[step] = true;
        for (const std::size_t start : starts) {
            if (!isSeen[start])
                Visit(start, &Lead::carriesOwn);
        }
        while (!m_toVisit.empty() && m_flow.IsWhole()) {
            const std::size_t step = m_toVisit.back();
            m_toVisit.pop_back();
            if (isSeen[step])
                continue;
            isSeen[step] = true;
            Visit(step, &Lead::carriesEarlier);
        }
    }

private:
    void Visit(std::size_t step, bool Lead::*carries) {
        CheckStep(step);
        const std::vector<WorkingCommand> atWork = m_flow.AtWork(step);
        if (AnyNames(atWork, PropertyKind::PersistentCommand, m_flow.CommandAt(m_command).id))
            return; // It may have ended when the step does.
        // The monitor has ended if it has chosen itself.
        const bool othersChoose = AnyNames(atWork, PropertyKind::Transition, m_transition);
        for (const Lead& lead : m_flow.LeadsOf(step)) {
            if (lead.*carries && (lead.transition != m_transition || othersChoose))
                m_toVisit.push_back(lead.target);
        }
    }

    /// Whether another command has this name in a property of this kind.
    bool AnyNames(const std::vector<WorkingCommand>& commands, PropertyKind kind,
                  std::string_view name) const {
        return std::any_of(commands.begin(), commands.end(), [&](const WorkingCommand& each) {
            const std::vector<NameUse>& names = m_flow.CommandAt(each.command).names;
            return each.command != m_command &&
                   std::any_of(names.begin(), names.end(),
                               [&](const NameUse& use) { return use.kind == kind && use.name == name; });
        });
    }

    void CheckStep(std::size_t number) {
        const Step& step = m_flow.StepAt(number);
        if (m_isReported[number] || !m_takesTime[number] || step.always || MayFail(step) ||
            m_flow.TargetOf(number, m_transition))
            return;
        m_isReported[number] = true;
        m_found.Warning(step.position,
                        fmt::format("the monitor {} may choose {} in step {}, which does not say where that "
                                    "leads: add it to 'on', of the step or of the procedure",
                                    Quoted(m_flow.CommandAt(m_command).id), Quoted(m_transition),
                                    Quoted(m_flow.StepId(number))));
    }

    bool MayFail(const Step& step) const {
        return std::any_of(step.mayFail.begin(), step.mayFail.end(), [this](const Located& each) {
            return each.text == m_flow.CommandAt(m_command).id || each.text == "SetTransition";
        });
    }

    Flow& m_flow;
    const std::size_t m_command;
    const std::string_view m_transition;
    const std::vector<bool>& m_takesTime;
    Diagnostics& m_found;
    std::vector<bool> m_isReported;
    Steps m_toVisit{};
};

} // namespace

void CheckGuards(Flow& flow, const std::vector<bool>& reached, const std::vector<bool>& takesTime,
                 Diagnostics& found) {
    std::map<std::size_t, Steps> starts; // By the monitor.
    std::map<std::size_t, Steps> endings;
    for (std::size_t step = 0; step < flow.StepCount() && flow.IsWhole(); ++step) {
        for (const auto& [command, onThread] : flow.CommandsOf(step)) {
            const CommandUse& use = flow.CommandAt(command);
            if (reached[step] && use.traits->guards)
                starts[command].push_back(step);
            for (const NameUse& name : use.names) {
                if (name.kind == PropertyKind::PersistentCommand && !onThread)
                    endings[flow.CommandNumber(name.name)].push_back(step);
            }
        }
    }
    for (const auto& [command, steps] : starts) {
        const Property* const transition = FindProperty(*flow.CommandAt(command).command, "failTransitionID");
        if (transition && !transition->value.text.empty() && flow.IsWhole())
            Guard(flow, command, transition->value.text, takesTime, found).Follow(steps, endings[command]);
    }
}

} // namespace vant::host
