#include "host/procedure/ProcedureNames.h"

#include "host/text/Suggestion.h"

#include <set>
#include <string>
#include <vector>

namespace vant::host {

namespace {

template <class Map>
std::vector<std::string> NamesOf(const Map& map) {
    std::vector<std::string> names;
    names.reserve(map.size());
    for (const auto& [name, value] : map)
        names.push_back(name);
    return names;
}

/// The steps that a step leads to by its own keys.
std::vector<const Located*> TargetsOf(const Step& step) {
    std::vector<const Located*> targets;
    if (step.next)
        targets.push_back(&*step.next);
    if (step.failed)
        targets.push_back(&*step.failed);
    for (const auto& [id, target] : step.on)
        targets.push_back(&target);
    return targets;
}

void WarnOfUnreachableSteps(const Procedure& procedure, Diagnostics& found) {
    std::set<std::string> reached;
    std::vector<std::string> toVisit = {procedure.start.text};
    // A command may lead to a step by its name, which it takes from a property.
    for (const auto& [id, command] : procedure.commands) {
        for (const Property& property : command.properties)
            toVisit.push_back(property.value.text);
    }
    while (!toVisit.empty()) {
        const std::string id = std::move(toVisit.back());
        toVisit.pop_back();
        const auto step = procedure.steps.find(id);
        if (step == procedure.steps.end() || !reached.insert(id).second)
            continue;
        for (const Located* const target : TargetsOf(step->second))
            toVisit.push_back(target->text);
    }
    for (const auto& [id, step] : procedure.steps) {
        if (!reached.contains(id))
            found.Warning(step.position, "nothing leads to step '" + id + "'");
    }
}

} // namespace

void CheckNames(const Procedure& procedure, Diagnostics& found) {
    const std::vector<std::string> steps = NamesOf(procedure.steps);
    const std::vector<std::string> commands = NamesOf(procedure.commands);
    const auto checkStep = [&](const Located& name) {
        if (!procedure.steps.contains(name.text))
            found.Error(name.position, "there is no step '" + name.text + "'" + DidYouMean(name.text, steps));
    };
    // A start that is missing altogether has been reported already.
    if (!procedure.start.text.empty())
        checkStep(procedure.start);
    for (const auto& [id, step] : procedure.steps) {
        for (const Located* const target : TargetsOf(step))
            checkStep(*target);
        for (const Located& command : step.run) {
            if (!procedure.commands.contains(command.text))
                found.Error(command.position, "there is no command '" + command.text + "'" +
                                                  DidYouMean(command.text, commands));
        }
    }
    if (!found.HasErrors())
        WarnOfUnreachableSteps(procedure, found);
}

} // namespace vant::host
