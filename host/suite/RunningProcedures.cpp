#include "host/suite/RunningProcedures.h"

#include "host/procedure/InputFile.h"
#include "host/record/Vocabulary.h"
#include "platform/Utf8.h"

namespace vant::host {

std::string NormalName(const std::string& file) {
    return FileName(PathFromUtf8(file).lexically_normal());
}

RunningProcedures::RunningProcedures(const LoadedProcedure& loaded) : m_outermost(loaded.procedure) {
    m_files.emplace(&loaded.procedure, NormalName(loaded.files.Main().name));
    for (const CalledProcedure& each : loaded.called)
        m_files.emplace(each.procedure.get(), NormalName(each.file->name));
}

const RunningProcedure* RunningProcedures::Take(const Record& record) {
    const std::size_t depth = m_depths.Take(record);
    const bool isEvent = record.service == service::Runner;
    if (m_hasEnded)
        m_running.pop_back();
    m_hasEnded = isEvent && record.operation == event::ProcedureEnded && !m_running.empty();
    if (isEvent && record.operation == event::ProcedureStarted)
        Begin();
    if (depth >= m_running.size())
        return nullptr;
    RunningProcedure& running = m_running[depth];
    if (isEvent && record.operation == event::StepEntered)
        running.step = record.Text(argument::step);
    else if (isEvent && record.operation == event::FinallyStarted)
        running.inFinally = true;
    return &running;
}

void RunningProcedures::Begin() {
    const Procedure* begun = &m_outermost;
    if (!m_running.empty()) // A step has called it.
        begun = m_running.back().procedure->steps.at(m_running.back().step).procedure->procedure.get();
    m_running.push_back({.procedure = begun, .file = m_files.at(begun)});
}

std::vector<std::pair<const Condition*, bool>> EvaluatedConditions(const Record& evaluation,
                                                                   const Procedure& procedure) {
    std::vector<std::pair<const Condition*, bool>> evaluated;
    const Value* const allMet = evaluation.Find(argument::allMet);
    const auto set = procedure.conditions.find(evaluation.Text(argument::name));
    if (!allMet || set == procedure.conditions.end())
        return evaluated;
    // The conditions were evaluated in order, up to the one that was decisive.
    const Conditions& conditions = set->second;
    const bool hasDecisive = conditions.any == (*allMet == Value(true));
    const std::string decisive =
        hasDecisive ? evaluation.Text(conditions.any ? argument::met : argument::failed) : "";
    for (const Condition& each : conditions.list) {
        const bool isDecisive = hasDecisive && Describe(each) == decisive;
        evaluated.emplace_back(&each, isDecisive == conditions.any);
        if (isDecisive)
            break;
    }
    return evaluated;
}

} // namespace vant::host
