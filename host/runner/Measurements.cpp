#include "host/runner/Measurements.h"

#include <utility>

namespace vant::host {

const char* NameOf(Outcome outcome) {
    switch (outcome) {
    case Outcome::Passed:
        return "passed";
    case Outcome::Failed:
        return "failed";
    case Outcome::Missing:
        return "missing";
    default:
        return "skipped";
    }
}

void Measurements::Expect(const std::string& entry) {
    const std::lock_guard lock(m_access);
    m_written.erase(entry);
}

void Measurements::BeginTry() {
    const std::lock_guard lock(m_access);
    ++m_try;
}

void Measurements::DropTry() {
    const std::lock_guard lock(m_access);
    std::erase_if(m_written, [this](const auto& entry) { return entry.second.inTry == m_try; });
}

void Measurements::Take(const std::string& entry, Value value, std::int64_t time, const std::string& step) {
    const std::lock_guard lock(m_access);
    m_written.insert_or_assign(entry, Written{std::move(value), time, step, m_try});
}

std::vector<Measurements::Result> Measurements::Results() const {
    std::vector<Result> results;
    const std::lock_guard lock(m_access);
    for (const auto& [name, measurement] : m_measurements) {
        const auto written = m_written.find(measurement.data.text);
        if (written == m_written.end()) {
            results.push_back({name, &measurement, measurement.optional ? Outcome::Skipped : Outcome::Missing,
                               std::nullopt});
            continue;
        }
        const auto& [value, time, step, inTry] = written->second;
        results.push_back({name, &measurement,
                           Satisfies(measurement.limits, value) ? Outcome::Passed : Outcome::Failed, value,
                           time, step});
    }
    return results;
}

} // namespace vant::host
