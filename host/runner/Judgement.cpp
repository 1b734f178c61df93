#include "host/runner/Judgement.h"

#include "host/record/Json.h"
#include "host/text/Printable.h"

#include <fmt/format.h>
#include <utility>

namespace vant::host {

namespace {

std::string Measured(const Measurements::Result& result) {
    const std::string units = result.measurement->units.empty() ? "" : " " + result.measurement->units;
    return fmt::format("measurement {} is {}{}, required {}", Quoted(result.name),
                       ToJson(*result.value).dump(), units, Describe(result.measurement->limits));
}

} // namespace

const char* NameOf(Verdict verdict) {
    switch (verdict) {
    case Verdict::Passed:
        return "passed";
    case Verdict::Failed:
        return "failed";
    case Verdict::Error:
        return "error";
    default:
        return "aborted";
    }
}

Ending Judge(const Findings& findings) {
    Ending ending = findings.ending;
    const auto become = [&ending](Verdict verdict, std::string reason) {
        ending = {verdict, std::move(reason)};
    };
    const auto ofOutcome = [&findings](Outcome outcome, auto describe) {
        std::vector<std::string> texts;
        for (const Measurements::Result& each : findings.measured) {
            if (each.outcome == outcome)
                texts.push_back(describe(each));
        }
        return fmt::format("{}", fmt::join(texts, "; "));
    };
    const std::string& cleanUp = findings.failedCleanUp;
    const std::string& calls = findings.failedCalls;
    const bool passes = ending.verdict == Verdict::Passed;
    if (passes || ending.verdict == Verdict::Failed) {
        const std::string failed = ofOutcome(Outcome::Failed, Measured);
        const std::string missing = ofOutcome(Outcome::Missing, [](const Measurements::Result& each) {
            return fmt::format("measurement {} was not made", Quoted(each.name));
        });
        if (!calls.empty())
            become(Verdict::Error, fmt::format("not everything was done: {}; otherwise {}: {}", calls,
                                               NameOf(ending.verdict), ending.reason));
        else if (passes && (!failed.empty() || !findings.failedProcedures.empty()))
            become(Verdict::Failed, failed.empty() ? findings.failedProcedures.front() : failed);
        else if (passes && !missing.empty())
            become(Verdict::Error, missing);
        else if (passes && !cleanUp.empty())
            become(Verdict::Error, ending.reason);
        else if (!passes && !failed.empty())
            ending.reason += "; " + failed;
    }
    if (!cleanUp.empty())
        ending.reason += "; the clean-up failed: " + cleanUp;
    return ending;
}

} // namespace vant::host
