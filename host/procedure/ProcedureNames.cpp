#include "host/procedure/ProcedureNames.h"

#include "host/record/Vocabulary.h"
#include "host/text/Printable.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <unordered_set>
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
    if (step.timedOut)
        targets.push_back(&*step.timedOut);
    if (step.always)
        targets.push_back(&*step.always);
    for (const auto& [id, target] : step.on)
        targets.push_back(&target);
    return targets;
}

class NameCheck {
public:
    NameCheck(const Procedure& procedure, Diagnostics& found)
        : m_procedure(procedure), m_found(found), m_hasErrors(found.HasErrors()) {}

    void Check() {
        m_steps.reserve(m_procedure.steps.size());
        for (const auto& [id, step] : m_procedure.steps)
            m_steps.insert(id);
        // A start that is missing or empty has been reported already.
        if (!m_procedure.start.text.empty())
            CheckStepName(m_procedure.start);
        for (const Located& command : m_procedure.finally)
            CheckName("command", command, m_procedure.commands);
        for (const auto& [transition, target] : m_procedure.on)
            CheckStepName(target);
        for (const auto& [id, step] : m_procedure.steps)
            CheckStep(step);
    }

private:
    template <class Map>
    void CheckName(const char* what, const Located& name, const Map& known) {
        // All are missing if their table could not be read.
        if (!known.contains(name.text) && !(known.empty() && m_hasErrors))
            m_found.Error(name.position, std::string("there is no ") + what + ' ' + Quoted(name.text) +
                                             m_found.Suggest(name.text, known));
    }

    void CheckStepName(const Located& name) {
        if (!m_steps.contains(name.text))
            CheckName("step", name, m_procedure.steps);
    }

    void CheckStep(const Step& step) {
        for (const Located* const target : TargetsOf(step))
            CheckStepName(*target);
        for (const Located& command : step.run)
            CheckName("command", command, m_procedure.commands);
        if (step.until)
            CheckName("condition set", *step.until, m_procedure.conditions);
        for (const Located& each : step.mayFail) {
            const bool isCalled = step.procedure && step.procedure->file.text == each.text;
            if (!isCalled && !IsOperation(each.text))
                CheckName("operation or command", each, m_procedure.commands);
        }
    }

    const Procedure& m_procedure;
    Diagnostics& m_found;
    std::unordered_set<std::string_view> m_steps; ///< Of a long procedure, found faster than in the map.
    const bool m_hasErrors;                       ///< Before any name was looked up.
};

} // namespace

bool IsOperation(std::string_view name) {
    return std::any_of(std::begin(recordKinds), std::end(recordKinds), [name](const RecordKind& kind) {
        return kind.service != service::Runner && kind.operation == name;
    });
}

void CheckNames(const Procedure& procedure, Diagnostics& found) {
    NameCheck(procedure, found).Check();
}

} // namespace vant::host
