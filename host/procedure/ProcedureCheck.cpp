#include "host/procedure/ProcedureCheck.h"

#include "host/procedure/FlowCheck.h"
#include "host/procedure/PropertyCheck.h"
#include "host/procedure/UseCheck.h"
#include "host/procedure/ValueCheck.h"
#include "host/text/Printable.h"

#include <algorithm>
#include <deque>
#include <map>
#include <vector>

namespace vant::host {

namespace {

struct Checked {
    const Procedure& procedure;
    Diagnostics& found;
    CallerUse callers{};
    std::vector<CommandUse> commands{};
    DataUse data{};
    WholeParts whole{};
};

class ProcedureCheck {
public:
    ProcedureCheck(std::span<const ProcedureToCheck> procedures, const EngineAtHand& engine,
                   bool hasOwnEngine)
        : m_engine(engine), m_hasOwnEngine(hasOwnEngine) {
        for (const ProcedureToCheck& each : procedures)
            m_all.push_back({*each.procedure, *each.found});
    }

    void Check() {
        FindCallers();
        for (Checked& each : m_all)
            Prepare(each);
        for (Checked& each : m_all)
            CheckOne(each);
    }

private:
    void FindCallers() {
        std::map<const Procedure*, CallerUse> uses;
        for (const Checked& each : m_all) {
            for (const auto& [id, step] : each.procedure.steps) {
                if (step.procedure)
                    AddCall(*step.procedure, uses[step.procedure->procedure.get()]);
            }
        }
        for (Checked& each : m_all)
            each.callers = std::move(uses[&each.procedure]);
    }

    static void AddCall(const ProcedureCall& call, CallerUse& use) {
        for (const auto& [name, value] : call.given)
            use.given.insert(name);
        for (const auto& [name, entry] : call.passed)
            use.given.insert(name);
        for (const auto& [name, entry] : call.results)
            use.taken.insert(entry.text);
    }

    void Prepare(Checked& checked) {
        checked.whole.commands = CheckProperties(checked.procedure, checked.found);
        checked.whole.everything = !checked.found.HasErrors();
        checked.commands = CommandUses(checked.procedure);
        checked.data = FindDataUse(checked.procedure, checked.commands, checked.callers);
        if (checked.whole.everything)
            m_called.emplace(&checked.procedure, &checked.data);
    }

    void CheckOne(Checked& checked) {
        const auto& [procedure, found, callers, commands, data, whole] = checked;
        const std::size_t errors = found.Errors();
        CheckReferences(procedure, commands, data, m_called, m_engine, whole, found);
        const bool namesAreRight = whole.everything && found.Errors() == errors;
        CheckValues(procedure, commands, data, found);
        // A wrong name makes other things look unused or out of reach.
        if (!namesAreRight)
            return;
        CheckFlow(procedure, commands, found);
        CheckUse(procedure, commands, data, m_hasOwnEngine && &checked == &m_all.front(), found);
        CheckCleanUp(checked);
    }

    /// What a procedure changes, its `finally` or that of the first procedure puts back.
    void CheckCleanUp(const Checked& checked) {
        if (!checked.procedure.finally.empty() || !m_all.front().procedure.finally.empty())
            return;
        const auto actuating = std::find_if(checked.commands.begin(), checked.commands.end(),
                                            [](const CommandUse& each) { return each.traits->actuates; });
        if (actuating != checked.commands.end())
            checked.found.Warning(actuating->command->position,
                                  "command " + Quoted(actuating->id) +
                                      " changes the engine, but the procedure has no 'finally' that puts it "
                                      "back however the procedure ends");
    }

    const EngineAtHand m_engine;
    const bool m_hasOwnEngine;
    std::deque<Checked> m_all;
    CalledData m_called;
};

} // namespace

void CheckProcedures(std::span<const ProcedureToCheck> procedures, const EngineAtHand& engine,
                     bool hasOwnEngine) {
    ProcedureCheck(procedures, engine, hasOwnEngine).Check();
}

} // namespace vant::host
