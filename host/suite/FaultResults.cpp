#include "host/suite/FaultResults.h"

#include "host/runner/Judgement.h"
#include "host/suite/Coverage.h"
#include "host/text/Printable.h"

#include <algorithm>
#include <fmt/format.h>
#include <map>
#include <optional>
#include <set>
#include <utility>

namespace vant::host {

namespace {

/// The values of the parameters that stay written, by id.
std::map<std::string, Json> LeftIn(const Json& result) {
    std::map<std::string, Json> left;
    for (const Json& each : result.at("left"))
        left.emplace(each.at("id"), each.at("value"));
    return left;
}

std::string ProblemWithLeft(const Fault& fault, const Json& faultFree, const Json& result) {
    const auto expected = LeftIn(faultFree);
    std::string problem;
    for (const auto& [id, value] : LeftIn(result)) {
        const auto found = expected.find(id);
        const bool isAsExpected = found != expected.end() && found->second == value;
        if (!isAsExpected &&
            std::find(fault.unwritten.begin(), fault.unwritten.end(), id) == fault.unwritten.end())
            problem += fmt::format("{}parameter {} stays at {}", problem.empty() ? "" : ", ", Printable(id),
                                   Printable(value.dump()));
    }
    return problem;
}

void Count(FaultRow& row, const FaultOutcome& outcome) {
    ++row.runs;
    row.passed += outcome.verdict == NameOf(Verdict::Passed);
    row.failed += outcome.verdict == NameOf(Verdict::Failed);
    row.error += outcome.verdict == NameOf(Verdict::Error);
    row.excused += outcome.excuse != nullptr;
    row.survived += !outcome.problem.empty();
}

bool IsFirstOfItsTable(const std::vector<TestCase>& cases, std::size_t number) {
    if (number == 0 || !cases[number].isSwept)
        return true;
    const TestCase& before = cases[number - 1];
    const TestCase& tested = cases[number];
    return before.file != tested.file || before.position < tested.position ||
           tested.position < before.position;
}

} // namespace

std::vector<FaultRun> FaultRunsOf(const std::vector<TestCase>& cases,
                                  const std::vector<CaseOutcome>& outcomes) {
    std::vector<FaultRun> runs;
    for (std::size_t number = 0; number < cases.size(); ++number) {
        if (outcomes[number].status != CaseStatus::Passed || !IsFirstOfItsTable(cases, number))
            continue;
        for (const Json& each : outcomes[number].faults)
            runs.push_back({number, FaultOf(each)});
    }
    return runs;
}

FaultOutcome OutcomeOf(const Fault& fault, const TestCase& tested, const Json& faultFree,
                       const WorkerReply& reply) {
    FaultOutcome outcome{.isKnown = true, .hasHappened = true};
    const Json json = reply.line ? Json::parse(*reply.line, nullptr, false) : Json();
    if (!json.is_object() || !json.contains("result")) {
        outcome.problem = "the run broke: " + (!reply.line                ? reply.failure
                                               : json.contains("failure") ? json["failure"].get<std::string>()
                                                                          : *reply.line);
        return outcome;
    }
    const Json& result = json["result"];
    outcome.hasHappened = result.at("hasHappened");
    if (!outcome.hasHappened)
        return outcome;
    outcome.verdict = result.at("verdict");
    outcome.problem = ProblemWithLeft(fault, faultFree, result);
    if (outcome.verdict != NameOf(Verdict::Passed))
        return outcome;
    const auto excuse = std::find_if(tested.mayPass.begin(), tested.mayPass.end(),
                                     [&fault](const FaultExcuse& each) { return Fits(each, fault); });
    if (excuse != tested.mayPass.end())
        outcome.excuse = &*excuse;
    else
        outcome.problem = "the run passed" + (outcome.problem.empty() ? "" : ", " + outcome.problem);
    return outcome;
}

FaultResults ResultsOf(const std::vector<TestCase>& cases, const std::vector<FaultRun>& runs,
                       const std::vector<FaultOutcome>& outcomes) {
    FaultResults results;
    std::map<std::string, FaultRow> rows;
    std::map<std::pair<std::string, std::string>, std::size_t> survivors; // By place and problem.
    std::set<std::string> excuses;
    std::set<std::string> used;
    for (std::size_t i = 0; i < runs.size(); ++i) {
        const auto& [number, fault] = runs[i];
        const FaultOutcome& outcome = outcomes[i];
        const TestCase& tested = cases[number];
        for (const FaultExcuse& each : tested.mayPass)
            excuses.insert(PlaceOf(tested.file, each.position));
        if (!outcome.isKnown) {
            ++results.notRun;
            continue;
        }
        ++results.runs;
        if (!outcome.hasHappened) {
            ++results.notMet;
            continue;
        }
        FaultRow& row = rows[Describe(fault)];
        row.what = Describe(fault);
        Count(row, outcome);
        if (outcome.excuse)
            used.insert(PlaceOf(tested.file, outcome.excuse->position));
        if (outcome.problem.empty())
            continue;
        const auto [found, isNew] =
            survivors.try_emplace(std::pair(fault.place, outcome.problem), results.survivors.size());
        if (isNew)
            results.survivors.push_back({.place = fault.place,
                                         .problem = outcome.problem,
                                         .caseNumber = number,
                                         .moment = DescribeMoment(fault)});
        Survivor& survivor = results.survivors[found->second];
        ++survivor.runs;
        if (std::find(survivor.what.begin(), survivor.what.end(), row.what) == survivor.what.end())
            survivor.what.push_back(row.what);
    }
    for (auto& [what, row] : rows)
        results.rows.push_back(std::move(row));
    if (results.notRun == 0)
        std::set_difference(excuses.begin(), excuses.end(), used.begin(), used.end(),
                            std::back_inserter(results.useless));
    return results;
}

Json FaultsToJson(const std::vector<TestCase>& cases, const FaultResults& results) {
    Json rows = Json::array();
    for (const FaultRow& each : results.rows)
        rows.push_back({{"what", each.what},
                        {"runs", each.runs},
                        {"passed", each.passed},
                        {"failed", each.failed},
                        {"error", each.error},
                        {"excused", each.excused},
                        {"survived", each.survived}});
    Json survivors = Json::array();
    for (const Survivor& each : results.survivors)
        survivors.push_back({{"place", each.place},
                             {"what", each.what},
                             {"problem", each.problem},
                             {"runs", each.runs},
                             {"case", cases[each.caseNumber].name},
                             {"moment", each.moment}});
    return {{"runs", results.runs},    {"notMet", results.notMet},          {"notRun", results.notRun},
            {"rows", std::move(rows)}, {"survivors", std::move(survivors)}, {"useless", results.useless}};
}

} // namespace vant::host
