#include "host/suite/RunCoverage.h"

#include "host/record/Vocabulary.h"
#include "host/runner/Judgement.h"
#include "host/suite/CoveragePoints.h"

namespace vant::host {

void RunCoverage::operator()(const Record& record) {
    const RunningProcedure* const running = m_running.Take(record);
    if (!running)
        return;
    Points& reached = m_reached[running->file];
    if (record.service == service::Runner)
        TakeEvent(record, *running, reached);
    else if (record.service == service::ConditionSet && record.operation == operation::Evaluate)
        for (const auto& [condition, isMet] : EvaluatedConditions(record, *running->procedure))
            reached.insert(ConditionPoint(record.Text(argument::name), *condition, isMet));
}

void RunCoverage::TakeEvent(const Record& record, const RunningProcedure& running, Points& reached) {
    if (record.operation == event::StepEntered)
        reached.insert(StepPoint(running.step));
    else if (record.operation == event::TransitionFollowed)
        TakeTransition(record, running, reached);
    else if (record.operation == event::StepRetried)
        reached.insert(RetryPoint(record.Text(argument::step)));
    else if (record.operation == event::CommandEnded)
        reached.insert(CommandPoint(record.command));
    else if (record.operation == event::Measured)
        TakeMeasurement(record, running, reached);
    else if (record.operation == event::ProcedureEnded && running.inFinally &&
             record.Text(argument::verdict) != NameOf(Verdict::Passed))
        reached.insert(CleanUpPoint());
}

void RunCoverage::TakeTransition(const Record& record, const RunningProcedure& running, Points& reached) {
    const std::string step = record.Text(argument::from);
    if (const std::string key = record.Text(argument::key); key != "on") {
        reached.insert(WayPoint(step, key));
        return;
    }
    const std::string transition = record.Text(argument::transitionId);
    reached.insert(ButtonPoint(step, transition));
    reached.insert(running.procedure->steps.at(step).on.contains(transition)
                       ? TransitionPoint(step, transition)
                       : CommonTransitionPoint(transition));
}

void RunCoverage::TakeMeasurement(const Record& record, const RunningProcedure& running, Points& reached) {
    const Value* const value = record.Find(argument::value);
    const std::string name = record.Text(argument::name);
    if (!value || *value == Value(nullptr))
        return;
    for (const Limits& each : LimitsOf(running.procedure->measurements.at(name).limits))
        reached.insert(LimitPoint(name, each, Satisfies(each, *value)));
}

} // namespace vant::host
