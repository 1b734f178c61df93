#include "host/suite/SuiteToJson.h"

#include <utility>

namespace vant::host {

namespace {

Json CaseToJson(const TestCase& tested, const CaseOutcome& outcome) {
    Json mismatches = Json::array();
    for (const Mismatch& each : outcome.mismatches)
        mismatches.push_back({{"what", each.what}, {"expected", each.expected}, {"came", each.came}});
    return {{"name", tested.name},
            {"file", tested.file},
            {"line", tested.position.line},
            {"column", tested.position.column},
            {"procedure", tested.procedure.text},
            {"engine", tested.engine ? Json(tested.engine->text) : Json()},
            {"status", NameOf(outcome.status)},
            {"mismatches", std::move(mismatches)},
            {"failure", outcome.failure.empty() ? Json() : Json(outcome.failure)},
            {"result", outcome.result}};
}

} // namespace

Json SuiteToJson(const std::vector<TestCase>& cases, const std::vector<CaseOutcome>& outcomes, Json coverage,
                 Json faults) {
    Json counts;
    for (const CaseStatus status :
         {CaseStatus::Passed, CaseStatus::Failed, CaseStatus::Error, CaseStatus::NotRun})
        counts[NameOf(status)] = 0;
    Json list = Json::array();
    for (std::size_t i = 0; i < cases.size(); ++i) {
        Json& count = counts[NameOf(outcomes[i].status)];
        count = count.get<std::size_t>() + 1;
        list.push_back(CaseToJson(cases[i], outcomes[i]));
    }
    return {{"format", 1},
            {"counts", std::move(counts)},
            {"coverage", std::move(coverage)},
            {"faults", std::move(faults)},
            {"cases", std::move(list)}};
}

} // namespace vant::host
