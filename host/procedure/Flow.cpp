#include "host/procedure/Flow.h"

#include <algorithm>
#include <map>
#include <utility>

namespace vant::host {

std::vector<std::string_view> ButtonsOf(const Step& step) {
    std::vector<std::string_view> buttons;
    if (step.ask) {
        for (const Located& each : step.ask->buttons)
            buttons.push_back(each.text);
    }
    return buttons;
}

Flow::Flow(const Procedure& procedure, std::span<const CommandUse> commands)
    : m_procedure(procedure), m_commands(commands), m_runs(commands.size()), m_seen(commands.size()) {
    for (std::size_t i = 0; i < commands.size(); ++i)
        m_commandNumbers.emplace(commands[i].id, i);
    for (std::size_t i = 0; i < commands.size(); ++i) {
        for (const NameUse& use : commands[i].names) {
            if (use.kind == PropertyKind::Command)
                m_runs[i].push_back(CommandNumber(use.name));
        }
    }
    for (const auto& [id, step] : procedure.steps) {
        m_stepNumbers.emplace(id, m_steps.size());
        m_stepIds.push_back(id);
        m_steps.push_back(&step);
    }
    m_leads.resize(m_steps.size());
    m_stillRunning.resize(m_steps.size());
    for (std::size_t step = 0; step < m_steps.size(); ++step)
        AddKeys(step);
    FindStillRunning(AddChoices());
    AddChoicesOnThreads();
}

std::optional<std::size_t> Flow::TargetOf(std::size_t step, std::string_view transition) const {
    if (m_steps[step]->always || m_steps[step]->end)
        return std::nullopt;
    const std::string id(transition);
    for (const auto* const targets : {&m_steps[step]->on, &m_procedure.on}) {
        if (const auto target = targets->find(id); target != targets->end())
            return m_stepNumbers.at(target->second.text);
    }
    const auto named = m_stepNumbers.find(transition);
    return named == m_stepNumbers.end() ? std::nullopt : std::optional(named->second);
}

std::vector<WorkingCommand> Flow::CommandsOf(std::size_t step) {
    std::vector<WorkingCommand> working;
    for (const Located& id : m_steps[step]->run)
        working.push_back({CommandNumber(id.text), false});
    return Closure(std::move(working));
}

std::vector<WorkingCommand> Flow::AtWork(std::size_t step) {
    std::vector<WorkingCommand> working = CommandsOf(step);
    for (const std::size_t command : m_stillRunning[step])
        working.push_back({command, true});
    return Closure(std::move(working));
}

std::vector<std::string_view> Flow::Choices(std::span<const WorkingCommand> working,
                                            std::span<const std::size_t> stillRunning) {
    std::vector<std::string_view> choices;
    const auto add = [&choices](std::string_view transition) { choices.push_back(transition); };
    for (const WorkingCommand& each : working)
        ForEachTransition(each.command, add);
    std::vector<WorkingCommand> earlier;
    for (const std::size_t command : stillRunning)
        earlier.push_back({command, true});
    for (const WorkingCommand& each : Closure(std::move(earlier)))
        ForEachTransition(each.command, add);
    return choices;
}

Graph Flow::Leads() const {
    Graph graph(m_steps.size());
    for (std::size_t step = 0; step < graph.size(); ++step) {
        for (const Lead& lead : m_leads[step])
            graph[step].push_back(lead.target);
    }
    return graph;
}

std::vector<bool> Flow::Reached() const {
    const Graph graph = Leads();
    std::vector<bool> reached(graph.size());
    MarkReachable(graph, m_stepNumbers.at(m_procedure.start.text), reached);
    return reached;
}

void Flow::AddKeys(std::size_t step) {
    const Step& keys = *m_steps[step];
    // A step that waits goes on by `next` when what it has started, or everything, has ended.
    if (keys.next)
        m_leads[step].push_back({.target = m_stepNumbers.at(keys.next->text),
                                 .carriesOwn = keys.wait == Wait::Not,
                                 .carriesEarlier = keys.wait != Wait::Transition});
    for (const std::optional<Located>* const target : {&keys.failed, &keys.timedOut, &keys.always}) {
        if (*target)
            m_leads[step].push_back({.target = m_stepNumbers.at((*target)->text)});
    }
    // Whether a command of the step takes it is found later.
    for (const auto& [id, target] : keys.on)
        m_leads[step].push_back({.target = m_stepNumbers.at(target.text), .transition = id, .isOwn = false});
}

/// The step's own commands, and its question, choose for the step; those on threads may choose in a later
/// one. Returns what runs on.
Flow::Starts Flow::AddChoices() {
    Starts starts;
    for (std::size_t step = 0; step < m_steps.size(); ++step) {
        for (const std::string_view button : ButtonsOf(*m_steps[step]))
            AddChoice(step, button, true);
        for (const auto& [command, onThread] : CommandsOf(step)) {
            const bool runsOn = m_commands[command].traits->runsOn;
            if (runsOn)
                starts[command].push_back(step);
            ForEachTransition(command, [&, onThread = onThread || runsOn](std::string_view transition) {
                if (onThread)
                    AddChosenAnywhere(transition);
                else
                    AddChoice(step, transition, true);
            });
        }
    }
    return starts;
}

void Flow::AddChoice(std::size_t step, std::string_view transition, bool isOwn) {
    const auto target = TargetOf(step, transition);
    if (!target)
        return;
    std::vector<Lead>& leads = m_leads[step];
    m_work -= static_cast<std::ptrdiff_t>(leads.size());
    const auto lead = std::find_if(leads.begin(), leads.end(),
                                   [&](const Lead& each) { return each.transition == transition; });
    if (lead == leads.end())
        leads.push_back({.target = *target, .transition = transition, .isOwn = isOwn});
    else
        lead->isOwn = lead->isOwn || isOwn;
}

/// In any step whose `on` does not name it.
void Flow::AddChosenAnywhere(std::string_view transition) {
    const auto common = m_procedure.on.find(std::string(transition));
    const auto target = m_stepNumbers.find(
        common == m_procedure.on.end() ? transition : std::string_view(common->second.text));
    if (target != m_stepNumbers.end())
        m_chosenAnywhere.push_back(target->second);
}

void Flow::FindStillRunning(const Starts& starts) {
    std::sort(m_chosenAnywhere.begin(), m_chosenAnywhere.end());
    m_chosenAnywhere.erase(std::unique(m_chosenAnywhere.begin(), m_chosenAnywhere.end()),
                           m_chosenAnywhere.end());
    for (const auto& [command, steps] : starts)
        Follow(command, steps);
}

/// Finds the steps in which a command may still run that these steps start.
void Flow::Follow(std::size_t command, const std::vector<std::size_t>& starts) {
    std::vector<std::size_t> toVisit = m_chosenAnywhere;
    const auto addNext = [&](std::size_t step, bool Lead::*carries) {
        m_work -= static_cast<std::ptrdiff_t>(m_leads[step].size()) + 1;
        for (const Lead& lead : m_leads[step]) {
            if (lead.*carries)
                toVisit.push_back(lead.target);
        }
    };
    for (const std::size_t start : starts)
        addNext(start, &Lead::carriesOwn);
    while (!toVisit.empty() && m_work > 0) {
        const std::size_t step = toVisit.back();
        toVisit.pop_back();
        // Commands are followed one after another.
        if (!m_stillRunning[step].empty() && m_stillRunning[step].back() == command)
            continue;
        m_stillRunning[step].push_back(command);
        addNext(step, &Lead::carriesEarlier);
    }
}

void Flow::AddChoicesOnThreads() {
    for (std::size_t step = 0; step < m_steps.size() && m_work > 0; ++step) {
        for (const auto& [command, onThread] : AtWork(step)) {
            if (onThread || m_commands[command].traits->runsOn)
                ForEachTransition(command,
                                  [&](std::string_view transition) { AddChoice(step, transition, false); });
        }
    }
}

std::vector<WorkingCommand> Flow::Closure(std::vector<WorkingCommand> working) {
    ++m_closures;
    std::vector<WorkingCommand> found;
    std::vector<WorkingCommand> onThreads;
    const auto visitAll = [&](std::vector<WorkingCommand>& toVisit) {
        while (!toVisit.empty() && m_work > 0) {
            const WorkingCommand each = toVisit.back();
            toVisit.pop_back();
            if (std::exchange(m_seen[each.command], m_closures) == m_closures)
                continue;
            found.push_back(each);
            m_work -= static_cast<std::ptrdiff_t>(m_runs[each.command].size()) + 1;
            const bool runsOn = m_commands[each.command].traits->runsOn;
            for (const std::size_t next : m_runs[each.command]) {
                if (runsOn)
                    onThreads.push_back({next, true});
                else
                    toVisit.push_back({next, each.onThread});
            }
        }
    };
    // What the step itself runs comes first: it counts as such, though a thread runs it, too.
    visitAll(working);
    while (!onThreads.empty() && m_work > 0) {
        std::vector<WorkingCommand> next = std::move(onThreads);
        onThreads.clear();
        visitAll(next);
    }
    return found;
}

template <class Visit>
void Flow::ForEachTransition(std::size_t command, Visit visit) const {
    for (const NameUse& use : m_commands[command].names) {
        if (use.kind == PropertyKind::Transition && !use.name.empty())
            visit(use.name);
    }
}

} // namespace vant::host
