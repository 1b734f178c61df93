#include "host/suite/FaultFinder.h"

#include "host/record/Activity.h"
#include "host/record/Vocabulary.h"
#include "host/suite/Coverage.h"

namespace vant::host {

namespace {

constexpr const char* cleanUp = "finally";

std::string PlaceOfCall(const std::string& command, const RunningProcedure& running) {
    const auto found = running.procedure->commands.find(command);
    if (found != running.procedure->commands.end())
        return PlaceOf(running.file, found->second.position);
    const auto step = running.procedure->steps.find(running.step);
    return PlaceOf(running.file, step == running.procedure->steps.end() ? Position() : step->second.position);
}

} // namespace

void FaultFinder::operator()(const Record& record) {
    const RunningProcedure* const running = m_running.Take(record);
    if (!running)
        return;
    if (record.service != service::Runner) {
        TakeCall(record, *running);
        TakeParameters(record, *running);
    } else if (record.operation == event::StepEntered) {
        m_steps.push_back({record.time, running->step, PlaceOfCall("", *running)});
    }
}

void FaultFinder::TakeCall(const Record& call, const RunningProcedure& running) {
    // A step repeats its own evaluations. What commands call while the runner ends them, no step deals with.
    if (call.command.empty())
        return;
    Fault fault{.subject = call.service + ' ' + call.operation,
                .thread = call.thread,
                .command = call.command,
                .step = running.inFinally ? cleanUp : running.step,
                .place = PlaceOfCall(call.command, running)};
    fault.number = ++m_counts[{fault.thread, fault.command, fault.subject}];
    if (call.operation == operation::SetParameter)
        fault.unwritten.push_back(call.Text(argument::id));
    m_calls.push_back(std::move(fault));
}

void FaultFinder::TakeParameters(const Record& call, const RunningProcedure& running) {
    if (const auto used = UsedValueOf(call)) {
        if (used->kind == UsedValue::Kind::ParameterRead)
            m_lastReads[used->name] = call.time;
        if (used->kind == UsedValue::Kind::ParameterWritten) {
            m_writers.try_emplace(used->name, PlaceOfCall(call.command, running));
            if (running.inFinally)
                m_cleanedUp[call.command].insert(used->name);
        }
    }
    if (call.service == service::ConditionSet && call.operation == operation::Evaluate) {
        for (const auto& [condition, isMet] : EvaluatedConditions(call, *running.procedure)) {
            if (condition->kind == Condition::Kind::Parameter)
                m_lastReads[condition->subject] = call.time;
        }
    }
}

std::vector<Fault> FaultFinder::Faults(std::size_t repeats) const {
    std::vector<Fault> faults;
    for (const Fault& each : m_calls) {
        const std::size_t count = m_counts.at({each.thread, each.command, each.subject});
        if (repeats != 0 && each.number >= repeats && each.number != count)
            continue;
        Fault& fault = faults.emplace_back(each);
        const auto written = m_cleanedUp.find(fault.command);
        if (fault.step == cleanUp && written != m_cleanedUp.end())
            fault.unwritten.assign(written->second.begin(), written->second.end());
    }
    AddLost(faults);
    AddRefused(faults);
    return faults;
}

void FaultFinder::AddLost(std::vector<Fault>& faults) const {
    for (const auto& [id, lastRead] : m_lastReads) {
        std::set<std::int64_t> times;
        for (const EnteredStep& each : m_steps) {
            if (each.time <= lastRead && times.insert(each.time).second)
                faults.push_back({.kind = Fault::Kind::Lost,
                                  .subject = id,
                                  .from = each.time,
                                  .step = each.step,
                                  .place = each.place});
        }
    }
}

void FaultFinder::AddRefused(std::vector<Fault>& faults) const {
    for (const auto& [id, place] : m_writers)
        faults.push_back({.kind = Fault::Kind::Refused, .subject = id, .place = place, .unwritten = {id}});
}

} // namespace vant::host
