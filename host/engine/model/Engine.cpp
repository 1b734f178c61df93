#include "host/engine/model/Engine.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace vant::host {

namespace {

/// An input that moves by itself is sampled once in this many steps and held in between.
constexpr std::int64_t movingSteps = 5;

} // namespace

Engine::Engine(const std::map<std::string, EngineParameter>& parameters, std::uint64_t seed, TimeSource clock,
               const FaultArrays& faultArrays)
    : m_clock(std::move(clock)), m_began(m_clock()) {
    for (const auto& [id, description] : parameters)
        m_parameters.try_emplace(id, id, description, seed);
    for (auto& [id, parameter] : m_parameters)
        parameter.Connect(m_parameters);
    BeginParameters();
    BeginFaults(faultArrays);
    for (std::int64_t& time : m_schedule)
        time = StepsUpTo(time);
    std::sort(m_schedule.begin(), m_schedule.end());
    TakeInputs();
}

void Engine::BeginParameters() {
    m_order = InOrder();
    for (LiveParameter* const parameter : m_order) {
        parameter->Begin();
        parameter->AddSchedule(m_schedule);
        if (parameter->TakesInputs())
            m_stateful.push_back(parameter);
    }
}

void Engine::BeginFaults(const FaultArrays& faultArrays) {
    for (const auto& [id, records] : faultArrays) {
        auto& faults = m_faultArrays[id];
        faults.reserve(records.size()); // So that none of them moves.
        for (const FaultRecordDescription& record : records) {
            LiveFault& fault = faults.emplace_back(record, m_parameters);
            fault.Observe(0, 0);
            if (!record.Changes())
                continue;
            fault.AddSchedule(m_schedule);
            m_changingFaults.push_back(&fault);
        }
    }
}

std::vector<LiveParameter*> Engine::InOrder() {
    std::map<const LiveParameter*, std::size_t> waitsFor;
    std::map<const LiveParameter*, std::vector<LiveParameter*>> followers;
    std::vector<LiveParameter*> order;
    for (auto& [id, parameter] : m_parameters) {
        if (parameter.Followed().empty())
            order.push_back(&parameter);
        waitsFor[&parameter] = parameter.Followed().size();
        for (const LiveParameter* const followed : parameter.Followed())
            followers[followed].push_back(&parameter);
    }
    for (std::size_t i = 0; i < order.size(); ++i) {
        for (LiveParameter* const follower : followers[order[i]]) {
            if (--waitsFor[follower] == 0)
                order.push_back(follower);
        }
    }
    return order;
}

Expected<Reading> Engine::Read(const std::string& id) const {
    const std::lock_guard lock(m_access);
    const auto found = m_parameters.find(id);
    if (found == m_parameters.end())
        return EngineError::NotFound;
    if (const auto* const recorded = Recorded(&EngineRecording::readings, id))
        return *recorded;
    const std::int64_t time = Advance();
    LiveParameter& parameter = found->second;
    if (!parameter.BeginRead(time))
        return EngineError::ReadFailed;
    return Reading{parameter.Read({time, m_writes}), parameter.OwnText()};
}

Expected<Value> Engine::WritableKind(const std::string& id) const {
    const auto found = m_parameters.find(id);
    if (found == m_parameters.end())
        return EngineError::NotFound;
    if (found->second.IsReadOnly())
        return EngineError::ReadOnly;
    return found->second.Kind();
}

std::optional<EngineError> Engine::Write(const std::string& id, Value value) {
    const std::lock_guard lock(m_access);
    const auto found = m_parameters.find(id);
    if (found == m_parameters.end())
        return EngineError::NotFound;
    LiveParameter& parameter = found->second;
    if (const auto* const recorded = Recorded(&EngineRecording::writes, id); recorded && *recorded)
        return *recorded;
    if (parameter.IsReadOnly())
        return EngineError::ReadOnly;
    if (value.index() != parameter.Kind().index())
        return EngineError::WrongKind;
    if (!parameter.Admits(value))
        return EngineError::OutOfLimits;
    Advance();
    for (LiveFault* const fault : m_changingFaults)
        fault->TakeWrite(id, value, m_step);
    parameter.Write(std::move(value), ++m_writes);
    TakeInputs();
    return std::nullopt;
}

std::vector<Engine::Left> Engine::LeftWritten() const {
    std::vector<Left> left;
    const std::lock_guard lock(m_access);
    for (const auto& [id, parameter] : m_parameters) {
        if (parameter.Written() && *parameter.Written() != parameter.Kind())
            left.push_back({id, *parameter.Written(), parameter.Kind()});
    }
    return left;
}

std::optional<RecordedEvaluation> Engine::RecordedEvaluationOf(const std::string& conditionSet) const {
    const std::lock_guard lock(m_access);
    const auto* const recorded = Recorded(&EngineRecording::evaluations, conditionSet);
    return recorded ? std::optional(*recorded) : std::nullopt;
}

std::vector<std::size_t> Engine::FaultRecords(const std::string& array) const {
    const std::lock_guard lock(m_access);
    const auto found = m_faultArrays.find(array);
    if (found == m_faultArrays.end())
        return {};
    if (const auto* const recorded = Recorded(&EngineRecording::faultRecords, array))
        return *recorded;
    Advance();
    std::vector<std::size_t> present;
    const std::vector<LiveFault>& faults = found->second;
    for (std::size_t i = 0; i < faults.size(); ++i) {
        if (faults[i].IsPresent(m_step))
            present.push_back(i);
    }
    return present;
}

std::int64_t Engine::Advance() const {
    const std::int64_t time = std::max<std::int64_t>(m_clock() - m_began, m_step * engineStep);
    const std::int64_t now = time / engineStep;
    for (std::int64_t next = NextChange(); next <= now; next = NextChange()) {
        m_step = next;
        TakeInputs();
    }
    m_step = now; // Also if no input changes, so that reads have no effect on later ones.
    return time;
}

std::int64_t Engine::NextChange() const {
    const auto scheduled = std::upper_bound(m_schedule.begin(), m_schedule.end(), m_step);
    std::int64_t next = scheduled == m_schedule.end() ? std::numeric_limits<std::int64_t>::max() : *scheduled;
    if (m_moves)
        next = std::min(next, (m_step / movingSteps + 1) * movingSteps);
    for (const LiveParameter* const each : m_stateful)
        next = std::min(next, each->NextArrival());
    return next;
}

void Engine::TakeInputs() const {
    for (LiveParameter* const each : m_stateful)
        each->TakeInput(m_step, m_writes);
    for (LiveFault* const each : m_changingFaults)
        each->Observe(m_step, m_writes);
    m_moves = AnyInputMoves();
}

bool Engine::AnyInputMoves() const {
    for (LiveParameter* const each : m_order)
        each->FindMoves(m_step);
    return std::any_of(m_stateful.begin(), m_stateful.end(),
                       [](const LiveParameter* each) { return each->InputMoves(); }) ||
           std::any_of(m_changingFaults.begin(), m_changingFaults.end(),
                       [this](const LiveFault* each) { return each->InputMoves(m_step); });
}

} // namespace vant::host
