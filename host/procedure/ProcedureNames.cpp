#include "host/procedure/ProcedureNames.h"

#include "host/text/Printable.h"

#include <set>
#include <string>
#include <vector>

namespace vant::host {

namespace {

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
            found.Warning(step.position, "nothing leads to step " + Quoted(id));
    }
}

} // namespace

void CheckNames(const Procedure& procedure, Diagnostics& found) {
    const auto checkStep = [&](const Located& name) {
        if (!procedure.steps.contains(name.text))
            found.Error(name.position,
                        "there is no step " + Quoted(name.text) + found.Suggest(name.text, procedure.steps));
    };
    // A start that is missing or empty has been reported already.
    if (!procedure.start.text.empty())
        checkStep(procedure.start);
    for (const auto& [id, step] : procedure.steps) {
        for (const Located* const target : TargetsOf(step))
            checkStep(*target);
        for (const Located& command : step.run) {
            if (!procedure.commands.contains(command.text))
                found.Error(command.position, "there is no command " + Quoted(command.text) +
                                                  found.Suggest(command.text, procedure.commands));
        }
    }
    if (!found.HasErrors())
        WarnOfUnreachableSteps(procedure, found);
}

} // namespace vant::host
