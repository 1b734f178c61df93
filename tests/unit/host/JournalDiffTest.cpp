#include "host/suite/JournalDiff.h"

#include "host/record/Vocabulary.h"
#include "tests/unit/host/RecordFixture.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace vant::host {

namespace {

class JournalDiffTest : public RecordFixture {
protected:
    void Take(const Record& record) override { m_records.push_back(record); }

    std::vector<Record> Records() {
        time = 0;
        thread = mainThread;
        return std::exchange(m_records, {});
    }

    /// A run of two steps, the second of which begins at `second`, with `value` stored in the first one.
    std::vector<Record> Run(const Value& value, std::int64_t second = 1000, HRESULT result = S_OK) {
        BeginProcedure("Check");
        EnterStep("measure");
        Call(service::DataStore, operation::SetValue, {{argument::name, "drop"}, {argument::value, value}},
             result);
        time = second;
        Follow("good");
        EnterStep("good");
        EndProcedure("passed");
        return Records();
    }

    static std::vector<std::string> Differences(const std::vector<Record>& a, const std::vector<Record>& b,
                                                const DiffTolerance& tolerance = {}) {
        std::vector<std::string> texts;
        for (const JournalDifference& each : CompareJournals(a, b, tolerance))
            texts.push_back(fmt::format("{}: {}", each.place, each.text));
        return texts;
    }

    using Texts = std::vector<std::string>;

private:
    std::vector<Record> m_records;
};

TEST_F(JournalDiffTest, SameRuns_DoNotDiffer) {
    EXPECT_EQ(Differences(Run("3"), Run("3")), Texts());
}

TEST_F(JournalDiffTest, Value_DiffersBeyondTheTolerance) {
    EXPECT_EQ(Differences(Run("3"), Run("3.5")),
              Texts{"step measure: work: DataStore SetValue drop: value 3 in A, 3.5 in B"});
    EXPECT_EQ(Differences(Run("3"), Run("3.5"), {.value = 0.5}), Texts());
    EXPECT_EQ(Differences(Run("3"), Run(3.0)), Texts()) << "a number and its text";
    EXPECT_EQ(Differences(Run("3"), Run("three"), {.value = 9}).size(), 1U);
}

TEST_F(JournalDiffTest, Result_IsPutIntoWords) {
    EXPECT_EQ(Differences(Run("3"), Run("3", 1000, E_ACCESSDENIED)),
              Texts{"step measure: work: DataStore SetValue drop: done, 0x00000000 in A, read-only, "
                    "0x80070005 in B"});
}

TEST_F(JournalDiffTest, Duration_DiffersBeyondTheTolerance) {
    EXPECT_EQ(Differences(Run("3"), Run("3", 1100)), Texts());
    EXPECT_EQ(Differences(Run("3"), Run("3", 1101)), Texts{"step measure: lasted 1 s in A, 1.101 s in B"});
    EXPECT_EQ(Differences(Run("3"), Run("3", 1101), {.time = 101}), Texts());
}

TEST_F(JournalDiffTest, StepOfOneRunAlone_IsNamed) {
    const std::vector<Record> a = Run("3");
    BeginProcedure("Check");
    EnterStep("measure");
    Call(service::DataStore, operation::SetValue, {{argument::name, "drop"}, {argument::value, "3"}});
    time = 1000;
    Follow("again");
    EnterStep("again");
    Follow("good");
    EnterStep("good");
    EndProcedure("passed");
    EXPECT_EQ(Differences(a, Records()),
              (Texts{"step measure: TransitionFollowed: to good in A, again in B", "step again: only in B"}));
}

TEST_F(JournalDiffTest, CallOfOneRunAlone_IsNamed) {
    const std::vector<Record> a = Run("3");
    std::vector<Record> b = Run("3");
    b.erase(b.begin() + 2);
    EXPECT_EQ(Differences(a, b), Texts{"step measure: only in A: work: DataStore SetValue drop"});
}

TEST_F(JournalDiffTest, Ending_IsCompared) {
    const std::vector<Record> a = Run("3");
    std::vector<Record> b = Run("3");
    b.back().arguments = {{argument::verdict, "failed"}, {argument::reason, "other"}};
    EXPECT_EQ(Differences(a, b), Texts{"end: ProcedureEnded: verdict passed in A, failed in B"});
}

TEST_F(JournalDiffTest, CalledProcedure_IsPartOfItsStep) {
    const auto run = [&](const char* value) {
        BeginProcedure("Outer");
        EnterStep("call");
        BeginProcedure("Inner");
        EnterStep("measure");
        Call(service::DataStore, operation::SetValue, {{argument::name, "drop"}, {argument::value, value}});
        EndProcedure("passed");
        Event(event::DataLeft, {{argument::name, "drop"}, {argument::value, value}});
        EndProcedure("passed");
        return Records();
    };
    const std::vector<Record> a = run("1");
    EXPECT_EQ(Differences(a, run("2")),
              (Texts{"step call > step measure: work: DataStore SetValue drop: value 1 in A, 2 in B",
                     "end: DataLeft drop: value 1 in A, 2 in B"}));
}

TEST_F(JournalDiffTest, Threads_AreComparedByTheirCallsInAnyOrder) {
    const auto run = [&](std::vector<const char*> entries, const char* last) {
        BeginProcedure("Check");
        EnterStep("s");
        thread = "Persistent Thread 1";
        for (const char* const entry : entries)
            Call(service::DataStore, operation::SetValue, {{argument::name, entry}, {argument::value, last}});
        return Records();
    };
    const std::vector<Record> a = run({"x", "y", "x"}, "1");
    EXPECT_EQ(Differences(a, run({"x", "x", "y"}, "1")), Texts());
    EXPECT_EQ(Differences(a, run({"x", "y"}, "1")),
              Texts{"thread Persistent Thread 1: work: DataStore SetValue x: 2 times in A, once in B"});
    EXPECT_EQ(Differences(a, run({"x", "x"}, "1")),
              Texts{"thread Persistent Thread 1: work: DataStore SetValue y: once in A, never in B"});
    EXPECT_EQ(Differences(a, run({"x", "y", "x"}, "2")).size(), 2U);
    EXPECT_EQ(Differences(a, run({}, "")), Texts{"thread Persistent Thread 1: only in A"});
}

} // namespace

} // namespace vant::host
