#include "vant/Test.h"

#include "host/procedure/InputFile.h"
#include "host/suite/CaseOutcome.h"
#include "host/suite/CaseRun.h"
#include "host/suite/Coverage.h"
#include "host/suite/JUnit.h"
#include "host/suite/Suite.h"
#include "host/suite/SuiteToJson.h"
#include "host/suite/SuiteUpdate.h"
#include "host/suite/WorkerPool.h"
#include "host/text/Duration.h"
#include "host/text/Printable.h"
#include "platform/Process.h"
#include "vant/CoverageReport.h"
#include "vant/FaultTest.h"
#include "vant/InterruptScope.h"
#include "vant/Messages.h"
#include "vant/Module.h"
#include "vant/ReportFile.h"
#include "vant/Terminal.h"
#include "vant/TestReport.h"
#include "vant/TestWorker.h"

#include <algorithm>
#include <chrono>
#include <fmt/format.h>
#include <iostream>
#include <memory>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

namespace vant::program {

using namespace host;

namespace {

std::int64_t TimeoutOf(const TestOptions& options) {
    const auto timeout = ParseDuration(options.caseTimeout);
    if (timeout.value_or(0) == 0)
        throw Failure(ExitCode::WrongInput,
                      "--case-timeout needs a duration such as 500ms, 60s, 10min or 1h, not '" +
                          options.caseTimeout + "'");
    return *timeout;
}

LoadedSuite Load(const TestOptions& options) {
    const std::vector<std::string> here = {"."};
    const std::unique_ptr<LoadedModule> module = OpenModule(options.module);
    try {
        return LoadSuite(options.paths.empty() ? here : options.paths, *module);
    } catch (const InputError& failure) {
        throw Failure(ExitCode::WrongInput, failure.what());
    }
}

void Filter(std::vector<TestCase>& cases, const std::string& filter) {
    std::erase_if(cases,
                  [&filter](const TestCase& each) { return each.name.find(filter) == std::string::npos; });
    if (cases.empty())
        throw Failure(ExitCode::WrongInput, "no case has a name that contains " + Quoted(filter));
}

WorkerSettings SettingsOf(const TestOptions& options) {
    const std::size_t processors = std::max(1U, std::thread::hardware_concurrency());
    return {.program = ProgramFile(),
            .arguments = {"test", "--worker", "--module", options.module},
            .count = options.jobs == 0 ? processors : options.jobs,
            .longestCase = std::chrono::milliseconds(TimeoutOf(options))};
}

/// `update`: null if the test files are to stay as they are.
std::vector<CaseOutcome> RunCases(const std::vector<TestCase>& cases, const WorkerSettings& settings,
                                  CaseWishes wishes, SuiteUpdate* update) {
    std::vector<std::string> requests;
    requests.reserve(cases.size());
    for (const TestCase& each : cases)
        requests.push_back(RequestOf(each, wishes).dump());
    const auto began = std::chrono::steady_clock::now();
    TakeInterrupts(); // Before the pool starts threads, which inherit the signal mask.
    TestReport report(std::cout, cases, WantsColour());
    WorkerPool pool(settings);
    {
        const InterruptScope scope([&pool] { pool.Stop(); });
        pool.Run(requests, [&](std::size_t number, const WorkerReply& reply) {
            const TestCase& tested = cases[number];
            CaseOutcome outcome = OutcomeOf(tested, reply);
            if (update && !outcome.result.is_null()) {
                const TestCase updated = update->Update(tested, outcome.result);
                outcome = Judged(updated, std::move(outcome));
            }
            report.Take(number, std::move(outcome));
        });
    }
    const auto duration = std::chrono::steady_clock::now() - began;
    return report.Finish(std::chrono::duration_cast<std::chrono::milliseconds>(duration).count());
}

void WriteUpdate(const SuiteUpdate& update) {
    std::cerr << update.Refusals();
    try {
        for (const auto& [file, count] : update.Write())
            std::cout << fmt::format("updated {}: {} case{}\n", Printable(file), count,
                                     count == 1 ? "" : "s");
    } catch (const std::system_error& failure) {
        throw Failure(ExitCode::Broken, failure.what());
    }
}

std::vector<CoveredProcedure> CoverageOf(const std::vector<TestCase>& cases,
                                         const std::vector<CaseOutcome>& outcomes) {
    Coverage coverage(cases);
    for (const CaseOutcome& each : outcomes)
        coverage.Add(each.coverage);
    return coverage.Procedures();
}

/// Whether enough was reached; prints that it was not.
bool IsEnough(const std::vector<CoveredProcedure>& covered, double failUnder) {
    const CoverageCount total = TotalOf(covered);
    const bool isEnough =
        static_cast<double>(total.reached) * 100 >= failUnder * static_cast<double>(total.of);
    if (!isEnough)
        std::cout << fmt::format("the coverage is less than {} %: {} of {}\n", failUnder, total.reached,
                                 total.of);
    return isEnough;
}

ExitCode ExitCodeOf(const std::vector<CaseOutcome>& outcomes) {
    const auto hasOne = [&outcomes](CaseStatus status) {
        return std::any_of(outcomes.begin(), outcomes.end(),
                           [status](const CaseOutcome& each) { return each.status == status; });
    };
    if (hasOne(CaseStatus::NotRun))
        return ExitCode::Aborted;
    return hasOne(CaseStatus::Failed) || hasOne(CaseStatus::Error) ? ExitCode::Failed : ExitCode::Passed;
}

} // namespace

ExitCode Test(const TestOptions& options) {
    if (options.worker)
        return WorkForTest(options.module);
    const WorkerSettings settings = SettingsOf(options);
    if (!options.json.empty() && options.json == options.junit)
        throw Failure(ExitCode::WrongInput, "--json and --junit need files of their own");
    LoadedSuite suite = Load(options);
    if (suite.HasErrors()) {
        Messages messages;
        for (const LoadedFiles& each : suite.messages)
            messages.Add(each);
        std::cerr << messages.Print();
        return ExitCode::WrongInput;
    }
    Filter(suite.cases, options.filter);
    std::optional<ReportFile> json;
    std::optional<ReportFile> junit;
    if (!options.json.empty())
        json.emplace(options.json);
    if (!options.junit.empty())
        junit.emplace(options.junit);
    SuiteUpdate update;
    const std::vector<CaseOutcome> outcomes =
        RunCases(suite.cases, settings,
                 {.coverage = options.coverage,
                  .faults = options.faults ? std::optional(options.faultRepeats) : std::nullopt},
                 options.update ? &update : nullptr);
    std::vector<CoveredProcedure> covered;
    if (options.coverage) {
        covered = CoverageOf(suite.cases, outcomes);
        PrintCoverage(std::cout, covered);
    }
    const bool isEnough = IsEnough(covered, options.failUnder);
    FaultResults faults;
    if (options.faults)
        faults = TestWithFaults(suite.cases, outcomes, settings);
    if (options.update)
        WriteUpdate(update);
    if (json)
        json->Write(SuiteToJson(suite.cases, outcomes, options.coverage ? CoverageToJson(covered) : Json(),
                                options.faults ? FaultsToJson(suite.cases, faults) : Json())
                        .dump(2) +
                    '\n');
    if (junit)
        junit->Write(ToJUnit(suite.cases, outcomes));
    if (!std::cout.flush())
        throw Failure(ExitCode::Broken, "the report could not be written completely");
    const ExitCode result = ExitCodeOf(outcomes);
    if (result == ExitCode::Aborted || faults.notRun != 0)
        return ExitCode::Aborted;
    return isEnough && faults.survivors.empty() ? result : ExitCode::Failed;
}

} // namespace vant::program
