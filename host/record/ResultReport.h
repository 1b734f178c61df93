#pragma once

#include "host/record/Json.h"

namespace vant {

/// Makes the result of one run from its records:
///
///     {"procedure": NAME, "verdict": "passed" | "failed" | "aborted", "reason": TEXT,
///      "steps": [{"step": ID, "commands": [{"command": ID, "class": NAME, "caller": ID or null,
///                                           "phase": TEXT, "result": HRESULT}],
///                 "next": ID or null}],
///      "data": {NAME: VALUE}}
///
/// Steps and commands stand in the order in which they were entered and ended.
class ResultReport {
public:
    ResultReport();
    void operator()(const Record& record);
    const Json& Result() const noexcept { return m_result; }

private:
    Json m_result;
};

} // namespace vant
