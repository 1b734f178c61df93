#include "host/runner/Measurements.h"

#include "host/object/VariantValue.h"
#include "host/record/Json.h"

#include <algorithm>
#include <fmt/format.h>
#include <utility>

namespace vant::host {

namespace {

/// The value as one of the type with which it is compared; null if it cannot be converted.
Value ConvertedTo(const Value& limit, const Value& value) {
    const VARTYPE type = std::holds_alternative<std::string>(limit) ? VT_BSTR
                         : std::holds_alternative<bool>(limit)      ? VT_BOOL
                                                                    : VT_R8;
    CComVariant converted = ToVariant(value);
    return SUCCEEDED(converted.ChangeType(type, lcidEnglishUS)) ? ToValue(converted.Get()) : Value(nullptr);
}

/// Whether a text fits a pattern, in which * stands for any characters and ? for one.
bool Fits(std::string_view text, std::string_view pattern) {
    std::size_t at = 0;
    std::size_t next = 0;
    std::size_t star =
        std::string_view::npos; // The last * so far, and the first character after what it stands for.
    std::size_t after = 0;
    while (at < text.size()) {
        if (next < pattern.size() && pattern[next] == '*') {
            star = next++;
            after = at;
        } else if (next < pattern.size() && pattern[next] == '?') {
            do
                ++at;
            while (at < text.size() && (text[at] & 0xC0) == 0x80); // The whole character.
            ++next;
        } else if (next < pattern.size() && pattern[next] == text[at]) {
            ++at;
            ++next;
        } else if (star != std::string_view::npos) {
            next = star + 1;
            at = ++after;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', next) == std::string_view::npos;
}

} // namespace

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

std::string DescribeLimits(const Measurement& measurement) {
    std::vector<std::string> texts;
    for (const auto& [comparison, value] : measurement.limits)
        texts.push_back(fmt::format("{} {}", NameOf(comparison), ToJson(value).dump()));
    if (!measurement.oneOf.empty()) {
        Json values = Json::array();
        for (const Value& each : measurement.oneOf)
            values.push_back(ToJson(each));
        texts.push_back("oneOf " + values.dump());
    }
    if (measurement.like)
        texts.push_back("like " + Json(*measurement.like).dump());
    return fmt::format("{}", fmt::join(texts, ", "));
}

bool Satisfies(const Measurement& measurement, const Value& value) {
    const auto is = [&value](const Value& limit) {
        return Holds(Comparison::Is, ConvertedTo(limit, value), limit);
    };
    if (!measurement.oneOf.empty() && std::none_of(measurement.oneOf.begin(), measurement.oneOf.end(), is))
        return false;
    if (measurement.like) {
        const Value text = ConvertedTo(*measurement.like, value);
        const auto* const converted = std::get_if<std::string>(&text);
        if (!converted || !Fits(*converted, *measurement.like))
            return false;
    }
    return std::all_of(measurement.limits.begin(), measurement.limits.end(), [&](const Limit& limit) {
        const Value converted = ConvertedTo(limit.value, value);
        return !std::holds_alternative<std::nullptr_t>(converted) &&
               Holds(limit.comparison, converted, limit.value);
    });
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
                           Satisfies(measurement, value) ? Outcome::Passed : Outcome::Failed, value, time,
                           step});
    }
    return results;
}

} // namespace vant::host
