#include "vant/FaultTest.h"

#include "host/suite/CaseRun.h"
#include "vant/FaultReport.h"
#include "vant/InterruptScope.h"
#include "vant/LiveLine.h"
#include "vant/Terminal.h"

#include <chrono>
#include <cstddef>
#include <fmt/format.h>
#include <iostream>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

namespace vant::program {

using namespace host;

FaultResults TestWithFaults(const std::vector<TestCase>& cases, const std::vector<CaseOutcome>& outcomes,
                            const WorkerSettings& settings) {
    const std::vector<FaultRun> runs = FaultRunsOf(cases, outcomes);
    std::vector<std::string> requests;
    requests.reserve(runs.size());
    for (const FaultRun& each : runs)
        requests.push_back(RequestOf(cases[each.caseNumber], each.fault).dump());
    std::vector<FaultOutcome> results(runs.size());
    const auto began = std::chrono::steady_clock::now();
    {
        std::mutex access;
        std::size_t ended = 0;
        std::optional<LiveLine> live;
        if (WantsColour())
            live.emplace(std::cout, access,
                         [&] { return fmt::format("{} of {} runs with faults", ended, runs.size()); });
        WorkerPool pool(settings);
        const InterruptScope scope([&pool] { pool.Stop(); });
        pool.Run(requests, [&](std::size_t number, const WorkerReply& reply) {
            const FaultRun& run = runs[number];
            FaultOutcome outcome =
                OutcomeOf(run.fault, cases[run.caseNumber], outcomes[run.caseNumber].result, reply);
            const std::lock_guard lock(access);
            results[number] = std::move(outcome);
            ++ended;
            if (live)
                live->Update();
        });
    }
    const auto duration = std::chrono::steady_clock::now() - began;
    FaultResults summary = ResultsOf(cases, runs, results);
    PrintFaults(std::cout, cases, summary,
                std::chrono::duration_cast<std::chrono::milliseconds>(duration).count());
    return summary;
}

} // namespace vant::program
