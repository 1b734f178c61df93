// Every example procedure while its engine's sensors are lost from each of its waiting steps on.

#include "host/procedure/Loading.h"
#include "host/record/Vocabulary.h"
#include "host/runner/Runner.h"
#include "host/suite/Discovery.h"
#include "tests/support/VirtualTime.h"
#include "tests/unit/host/BuiltModule.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace vant::host {

namespace {

struct Outcome {
    Verdict verdict{};
    std::string reason;
    std::int64_t duration = 0;
    std::vector<std::pair<std::string, std::int64_t>> steps; ///< As they were entered, with their times.
    bool cleanedUp = false;
};

Outcome RunOnce(const Procedure& procedure) {
    const test::VirtualTime time; // Before the module is loaded, which waits in this time.
    const LoadedModule module(test::BuiltModuleFile());
    Outcome outcome;
    Journal journal;
    journal.Observe([&outcome](const Record& record) {
        outcome.duration = record.time;
        if (record.operation == event::StepEntered)
            outcome.steps.emplace_back(record.Text(argument::step), record.time);
        outcome.cleanedUp = outcome.cleanedUp || record.operation == event::FinallyStarted;
        outcome.reason = record.Text(argument::reason);
    });
    Runner runner(procedure, module, journal);
    outcome.verdict = runner.Run();
    EXPECT_TRUE(runner.StillHeld().empty());
    return outcome;
}

/// Moments at the beginning, in the middle and near the end of each step that takes time.
std::vector<std::pair<std::string, std::int64_t>> WaitingSteps(const Outcome& outcome) {
    std::vector<std::pair<std::string, std::int64_t>> waiting;
    for (std::size_t i = 0; i + 1 < outcome.steps.size(); ++i) {
        const auto& [step, begin] = outcome.steps[i];
        const std::int64_t length = outcome.steps[i + 1].second - begin;
        for (const std::int64_t quarter : {0, 2, 3}) {
            if (length > 0)
                waiting.emplace_back(step, begin + length * quarter / 4);
        }
    }
    return waiting;
}

TEST(LostSensor, InEachWaitingStepOfEachExample_EndsTheRunInBoundedTimeWithTheReason) {
    std::size_t runs = 0;
    for (const auto& entry : std::filesystem::directory_iterator("procedures")) {
        if (entry.path().extension() != ".toml" || IsTestFile(PathToUtf8(entry.path())))
            continue;
        SCOPED_TRACE(entry.path().string());
        LoadedProcedure loaded = LoadProcedure(PathToUtf8(entry.path()), "");
        ASSERT_FALSE(loaded.files.HasErrors()) << loaded.files.Print();
        if (!loaded.procedure.engine)
            continue;
        const Outcome sound = RunOnce(loaded.procedure);
        for (const auto& [step, time] : WaitingSteps(sound)) {
            SCOPED_TRACE("lost in step " + step + " at " + std::to_string(time));
            Procedure broken = loaded.procedure;
            for (auto& [id, parameter] : broken.engine->parameters)
                parameter.outage = Outage{time, std::nullopt};
            const Outcome outcome = RunOnce(broken);
            ++runs;
            EXPECT_NE(outcome.verdict, Verdict::Passed) << outcome.reason;
            EXPECT_LE(outcome.duration, broken.maxTime + broken.finallyTime);
            EXPECT_NE(outcome.reason, "");
            EXPECT_EQ(outcome.cleanedUp, !broken.finally.empty());
        }
    }
    EXPECT_GE(runs, 20U);
}

} // namespace

} // namespace vant::host
