#pragma once

#include "host/record/Json.h"

#include <cstddef>

namespace vant::host {

/// Makes the result of one run from its records:
///
///     {"procedure": NAME, "verdict": "passed" | "failed" | "aborted", "reason": TEXT,
///      "steps": [{"step": ID, "commands": [{"command": ID, "class": NAME, "caller": ID or null,
///                                           "phase": TEXT, "result": HRESULT}],
///                 "instructions": [TEXT], "display": {COMPONENT: {PROPERTY: TEXT}}, "next": ID or null}],
///      "data": {NAME: VALUE}}
///
/// Of steps, commands and instructions the first `mostEntries` are kept; "omitted" then counts the steps, and
/// the entries of kept steps, that came later. Without "omitted" nothing is missing.
///
/// Steps, commands and instructions are listed in the order in which they were entered, ended and shown. If a
/// step sets a property of a component several times, the last value counts.
class ResultReport {
public:
    static constexpr std::size_t mostEntries = 10000;

    ResultReport();
    void operator()(const Record& record);
    const Json& Result() const noexcept { return m_result; }

private:
    /// Whether one more entry is kept.
    bool Keeps();
    void TakeEvent(const Record& record);
    /// What was shown to the technician.
    void TakeCall(const Record& record);

    Json m_result;
    std::size_t m_entries = 0;
    std::size_t m_omitted = 0;
    bool m_stepIsKept = false;
};

} // namespace vant::host
