#include "host/procedure/Flow.h"

#include <algorithm>
#include <map>
#include <utility>

namespace vant::host {

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
    m_carries.resize(m_steps.size());
    m_chosen.resize(m_steps.size());
    m_stillRunning.resize(m_steps.size());
    for (std::size_t step = 0; step < m_steps.size(); ++step)
        AddKeys(step);
    FindStillRunning();
}

std::vector<WorkingCommand> Flow::CommandsOf(std::size_t step) {
    std::vector<WorkingCommand> working;
    for (const Located& id : m_steps[step]->run)
        working.push_back({CommandNumber(id.text), false});
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

std::vector<bool> Flow::Reached() const {
    Graph graph = m_leads;
    for (std::size_t step = 0; step < graph.size(); ++step)
        graph[step].insert(graph[step].end(), m_chosen[step].begin(), m_chosen[step].end());
    std::vector<bool> reached(graph.size());
    MarkReachable(graph, m_stepNumbers.at(m_procedure.start.text), reached);
    return reached;
}

void Flow::AddKeys(std::size_t step) {
    const Step& keys = *m_steps[step];
    const auto add = [&](const std::optional<Located>& target, bool carries) {
        if (!target)
            return;
        m_leads[step].push_back(m_stepNumbers.at(target->text));
        if (carries)
            m_carries[step].push_back(m_leads[step].back());
    };
    // A step that waits goes on by `next` when nothing runs any more.
    add(keys.next, keys.wait == Wait::Not);
    add(keys.failed, true);
    add(keys.timedOut, true);
    add(keys.always, true);
    for (const auto& [id, target] : keys.on)
        add(target, true);
}

/// The step's own commands choose for the step; those on threads may choose in a later one.
void Flow::FindStillRunning() {
    std::map<std::size_t, std::vector<std::size_t>> starts; // by the command that is started
    for (std::size_t step = 0; step < m_steps.size(); ++step) {
        for (const auto& [command, onThread] : CommandsOf(step)) {
            const bool runsOn = m_commands[command].traits->runsOn;
            if (runsOn)
                starts[command].push_back(step);
            ForEachTransition(command, [&, onThread = onThread || runsOn](std::string_view transition) {
                const auto target = m_stepNumbers.find(transition);
                if (target == m_stepNumbers.end())
                    return;
                if (onThread)
                    m_chosenAnywhere.push_back(target->second);
                Graph& graph = onThread ? m_chosen : m_leads;
                graph[step].push_back(target->second);
                if (!onThread)
                    m_carries[step].push_back(target->second);
            });
        }
    }
    std::sort(m_chosenAnywhere.begin(), m_chosenAnywhere.end());
    m_chosenAnywhere.erase(std::unique(m_chosenAnywhere.begin(), m_chosenAnywhere.end()),
                           m_chosenAnywhere.end());
    for (const auto& [command, steps] : starts)
        Follow(command, steps);
}

/// Finds the steps in which a command may still run that these steps start.
void Flow::Follow(std::size_t command, const std::vector<std::size_t>& starts) {
    std::vector<std::size_t> toVisit = m_chosenAnywhere;
    const auto addNext = [&](std::size_t step) {
        m_work -= static_cast<std::ptrdiff_t>(m_carries[step].size()) + 1;
        toVisit.insert(toVisit.end(), m_carries[step].begin(), m_carries[step].end());
    };
    for (const std::size_t start : starts)
        addNext(start);
    while (!toVisit.empty() && m_work > 0) {
        const std::size_t step = toVisit.back();
        toVisit.pop_back();
        // Commands are followed one after another.
        if (!m_stillRunning[step].empty() && m_stillRunning[step].back() == command)
            continue;
        m_stillRunning[step].push_back(command);
        addNext(step);
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
