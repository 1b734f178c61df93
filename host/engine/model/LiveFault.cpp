#include "host/engine/model/LiveFault.h"

#include "host/engine/model/Inertia.h"

namespace vant::host {

namespace {

/// Numbers of both types are compared as numbers.
bool AreEqual(const Value& a, const Value& b) {
    const auto number = NumberIn(a);
    return number ? number == NumberIn(b) : a == b;
}

bool Satisfies(const FaultCondition& condition, const Value& actual) {
    using enum FaultCondition::Relation;
    if (condition.relation == Is)
        return AreEqual(actual, condition.value);
    const auto number = NumberIn(actual);
    const auto bound = NumberIn(condition.value);
    if (!number || !bound)
        return false;
    switch (condition.relation) {
    case Above:
        return *number > *bound;
    case AtLeast:
        return *number >= *bound;
    case Below:
        return *number < *bound;
    default:
        return *number <= *bound;
    }
}

} // namespace

LiveFault::LiveFault(const FaultRecordDescription& description,
                     const std::map<std::string, LiveParameter>& all)
    : m_description(description),
      m_watched(description.when ? &all.at(description.when->parameter) : nullptr) {}

bool LiveFault::IsPresent(std::int64_t step) const noexcept {
    const std::int64_t holdsFor = m_description.when ? m_description.when->holdsFor : 0;
    return m_isSet || (m_since && (step - *m_since) * engineStep >= holdsFor);
}

void LiveFault::Observe(std::int64_t step, std::uint64_t writes) {
    if (Holds(step, writes)) {
        m_since = m_since.value_or(step);
        return;
    }
    const auto& when = m_description.when;
    m_isSet = when && when->latched && IsInItsTime(step) && IsPresent(step);
    m_since.reset();
}

void LiveFault::TakeWrite(const std::string& parameter, const Value& value, std::int64_t step) {
    const auto& clearing = m_description.clearedBy;
    if (!clearing || clearing->parameter != parameter || !AreEqual(clearing->value, value))
        return;
    m_isOver = m_isOver || (!m_watched && IsPresent(step));
    m_isSet = false;
    m_since.reset();
}

void LiveFault::AddSchedule(std::vector<std::int64_t>& times) const {
    times.push_back(m_description.from);
    if (m_description.until)
        times.push_back(*m_description.until);
}

bool LiveFault::IsInItsTime(std::int64_t step) const noexcept {
    const std::int64_t time = step * engineStep;
    return time >= m_description.from && !(m_description.until && time >= *m_description.until);
}

bool LiveFault::Holds(std::int64_t step, std::uint64_t writes) const {
    return !m_isOver && IsInItsTime(step) &&
           (!m_watched || Satisfies(*m_description.when, m_watched->QuietValue({step * engineStep, writes})));
}

} // namespace vant::host
