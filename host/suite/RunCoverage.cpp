#include "host/suite/RunCoverage.h"

#include "host/procedure/InputFile.h"
#include "host/record/Vocabulary.h"
#include "host/runner/Judgement.h"
#include "host/suite/CoveragePoints.h"
#include "platform/Utf8.h"

namespace vant::host {

std::string CoveredFile(const std::string& file) {
    return FileName(PathFromUtf8(file).lexically_normal());
}

RunCoverage::RunCoverage(const LoadedProcedure& loaded) : m_outermost(loaded.procedure) {
    m_files.emplace(&loaded.procedure, CoveredFile(loaded.files.Main().name));
    for (const CalledProcedure& each : loaded.called)
        m_files.emplace(each.procedure.get(), CoveredFile(each.file->name));
}

void RunCoverage::operator()(const Record& record) {
    const std::size_t depth = m_depths.Take(record);
    const bool isEvent = record.service == service::Runner;
    if (isEvent && record.operation == event::ProcedureStarted)
        Begin();
    if (depth >= m_running.size())
        return;
    if (isEvent)
        TakeEvent(record, m_running[depth]);
    else if (record.service == service::ConditionSet && record.operation == operation::Evaluate)
        TakeEvaluation(record, m_running[depth]);
    if (isEvent && record.operation == event::ProcedureEnded)
        m_running.pop_back();
}

void RunCoverage::Begin() {
    // A step has called it.
    const Procedure* const begun =
        m_running.empty() ? &m_outermost : m_running.back().step->procedure->procedure.get();
    m_running.push_back({.procedure = begun, .reached = &m_reached[m_files.at(begun)]});
}

void RunCoverage::TakeEvent(const Record& record, Running& running) {
    std::set<std::string>& reached = *running.reached;
    if (record.operation == event::StepEntered) {
        const std::string id = record.Text(argument::step);
        running.step = &running.procedure->steps.at(id);
        reached.insert(StepPoint(id));
    } else if (record.operation == event::TransitionFollowed) {
        TakeTransition(record, running);
    } else if (record.operation == event::StepRetried) {
        reached.insert(RetryPoint(record.Text(argument::step)));
    } else if (record.operation == event::CommandEnded) {
        reached.insert(CommandPoint(record.command));
    } else if (record.operation == event::Measured) {
        TakeMeasurement(record, running);
    } else if (record.operation == event::FinallyStarted) {
        running.cleansUp = true;
    } else if (record.operation == event::ProcedureEnded && running.cleansUp &&
               record.Text(argument::verdict) != NameOf(Verdict::Passed)) {
        reached.insert(CleanUpPoint());
    }
}

void RunCoverage::TakeTransition(const Record& record, const Running& running) {
    const std::string step = record.Text(argument::from);
    if (const std::string key = record.Text(argument::key); key != "on") {
        running.reached->insert(WayPoint(step, key));
        return;
    }
    const std::string transition = record.Text(argument::transitionId);
    running.reached->insert(ButtonPoint(step, transition));
    running.reached->insert(running.procedure->steps.at(step).on.contains(transition)
                                ? TransitionPoint(step, transition)
                                : CommonTransitionPoint(transition));
}

void RunCoverage::TakeEvaluation(const Record& record, const Running& running) {
    const Value* const allMet = record.Find(argument::allMet);
    const std::string name = record.Text(argument::name);
    const auto set = running.procedure->conditions.find(name);
    if (!allMet || set == running.procedure->conditions.end())
        return;
    // The conditions were evaluated in order, up to the one that was decisive.
    const bool isMet = *allMet == Value(true);
    const bool areDifferent = set->second.any == isMet;
    const std::string decisive =
        !areDifferent ? "" : record.Text(set->second.any ? argument::met : argument::failed);
    for (const Condition& each : set->second.list) {
        const bool isDecisive = areDifferent && Describe(each) == decisive;
        running.reached->insert(ConditionPoint(name, each, isDecisive == set->second.any));
        if (isDecisive)
            break;
    }
}

void RunCoverage::TakeMeasurement(const Record& record, const Running& running) {
    const Value* const value = record.Find(argument::value);
    const std::string name = record.Text(argument::name);
    if (!value || *value == Value(nullptr))
        return;
    for (const Limits& each : LimitsOf(running.procedure->measurements.at(name).limits))
        running.reached->insert(LimitPoint(name, each, Satisfies(each, *value)));
}

} // namespace vant::host
