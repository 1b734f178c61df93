#pragma once

#include "host/record/Json.h"

namespace vant::host {

/// Makes the result of one run from its records:
///
///     {"procedure": NAME, "verdict": "passed" | "failed" | "aborted", "reason": TEXT,
///      "steps": [{"step": ID, "commands": [{"command": ID, "class": NAME, "caller": ID or null,
///                                           "phase": TEXT, "result": HRESULT}],
///                 "instructions": [TEXT], "display": {COMPONENT: {PROPERTY: TEXT}}, "next": ID or null}],
///      "data": {NAME: VALUE}}
///
/// Steps, commands and instructions are listed in the order in which they were entered, ended and shown. If a
/// step sets a property of a component several times, the last value counts.
class ResultReport {
public:
    ResultReport();
    void operator()(const Record& record);
    const Json& Result() const noexcept { return m_result; }

private:
    void TakeEvent(const Record& record);
    /// What was shown to the technician.
    void TakeCall(const Record& record);

    Json m_result;
};

} // namespace vant::host
