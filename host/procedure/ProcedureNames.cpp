#include "host/procedure/ProcedureNames.h"

#include "host/record/Vocabulary.h"
#include "host/text/Printable.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace vant::host {

namespace {

bool IsOperation(std::string_view name) {
    return std::any_of(std::begin(recordKinds), std::end(recordKinds), [name](const RecordKind& kind) {
        return kind.service != service::Runner && kind.operation == name;
    });
}

/// The steps that a step leads to by its own keys.
std::vector<const Located*> TargetsOf(const Step& step) {
    std::vector<const Located*> targets;
    if (step.next)
        targets.push_back(&*step.next);
    if (step.failed)
        targets.push_back(&*step.failed);
    if (step.timedOut)
        targets.push_back(&*step.timedOut);
    if (step.always)
        targets.push_back(&*step.always);
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

class NameCheck {
public:
    NameCheck(const Procedure& procedure, Diagnostics& found) : m_procedure(procedure), m_found(found) {}

    void Check() {
        // A start that is missing or empty has been reported already.
        if (!m_procedure.start.text.empty())
            CheckName("step", m_procedure.start, m_procedure.steps);
        for (const Located& command : m_procedure.finally)
            CheckName("command", command, m_procedure.commands);
        for (const auto& [id, step] : m_procedure.steps)
            CheckStep(step);
    }

private:
    template <class Map>
    void CheckName(const char* what, const Located& name, const Map& known) {
        if (!known.contains(name.text))
            m_found.Error(name.position, std::string("there is no ") + what + ' ' + Quoted(name.text) +
                                             m_found.Suggest(name.text, known));
    }

    void CheckStep(const Step& step) {
        for (const Located* const target : TargetsOf(step))
            CheckName("step", *target, m_procedure.steps);
        for (const Located& command : step.run)
            CheckName("command", command, m_procedure.commands);
        if (step.until)
            CheckName("condition set", *step.until, m_procedure.conditions);
        for (const Located& each : step.mayFail) {
            if (!IsOperation(each.text))
                CheckName("operation or command", each, m_procedure.commands);
        }
    }

    const Procedure& m_procedure;
    Diagnostics& m_found;
};

} // namespace

void CheckNames(const Procedure& procedure, Diagnostics& found) {
    NameCheck(procedure, found).Check();
    if (!found.HasErrors())
        WarnOfUnreachableSteps(procedure, found);
}

} // namespace vant::host
