#include "host/suite/CaseOutcome.h"

#include <utility>

namespace vant::host {

namespace {

CaseOutcome ErrorOf(std::string failure) {
    return {.status = CaseStatus::Error, .failure = std::move(failure)};
}

} // namespace

const char* NameOf(CaseStatus status) {
    switch (status) {
    case CaseStatus::NotRun:
        return "not run";
    case CaseStatus::Passed:
        return "passed";
    case CaseStatus::Failed:
        return "failed";
    default:
        return "error";
    }
}

CaseOutcome OutcomeOf(const TestCase& tested, const WorkerReply& reply) {
    if (!reply.line)
        return ErrorOf(reply.failure);
    Json json = Json::parse(*reply.line, nullptr, false);
    if (json.is_object() && json.contains("result")) {
        CaseOutcome outcome{.result = std::move(json["result"])};
        for (const auto& [key, target] :
             {std::pair("coverage", &outcome.coverage), std::pair("faults", &outcome.faults)}) {
            if (json.contains(key))
                *target = std::move(json[key]);
        }
        return Judged(tested, std::move(outcome));
    }
    if (json.is_object() && json.contains("failure"))
        return ErrorOf(json["failure"]);
    return ErrorOf("the worker has printed something other than a result: " + *reply.line);
}

CaseOutcome Judged(const TestCase& tested, CaseOutcome outcome) {
    outcome.mismatches = FindMismatches(tested.expected, outcome.result);
    outcome.status = outcome.mismatches.empty() ? CaseStatus::Passed : CaseStatus::Failed;
    return outcome;
}

} // namespace vant::host
