#include "host/suite/Replay.h"

#include "host/engine/model/Engine.h"
#include "host/suite/JournalDiff.h"
#include "tests/unit/host/RecordFixture.h"
#include "tests/unit/host/WarmUpBench.h"

#include <gtest/gtest.h>
#include <string>
#include <variant>
#include <vector>

namespace vant::host {

namespace {

TEST(Timeline, ItemsOfOneTime_AreReturnedOneByOne) {
    Timeline<int> line;
    EXPECT_EQ(line.Next(0), nullptr);
    line.Add(100, 1);
    line.Add(100, 2);
    line.Add(200, 3);
    EXPECT_EQ(*line.Next(0), 1) << "before the first time";
    EXPECT_EQ(*line.Next(100), 1);
    EXPECT_EQ(*line.Next(150), 2);
    EXPECT_EQ(*line.Next(199), 2) << "the last one stays";
    EXPECT_EQ(*line.Next(1000), 3);
}

TEST(Timeline, LaterTime_LeavesOutWhatWasNotAskedFor) {
    Timeline<int> line;
    for (int i = 1; i <= 5; ++i)
        line.Add(100 * i, i);
    EXPECT_EQ(*line.Next(100), 1);
    EXPECT_EQ(*line.Next(420), 4);
}

class ReplayPlanTest : public RecordFixture {
protected:
    void Take(const Record& record) override { m_records.push_back(record); }
    EngineDescription Planned() const { return PlanReplay(m_records).engine; }

    std::vector<Record> m_records;
};

TEST_F(ReplayPlanTest, Readings_AreReturnedAtTheirTimes) {
    Call(service::Parameter, operation::get_Value,
         {{argument::id, "7"}, {argument::value, std::int64_t{800}}});
    time = 500;
    Call(service::Parameter, operation::get_Text, {{argument::id, "7"}, {argument::value, "ON"}});
    time = 900;
    Call(service::SessionItem, operation::get_Value, {{argument::id, "7"}},
         HRESULT_FROM_WIN32(ERROR_READ_FAULT));
    std::int64_t now = 0;
    const EngineDescription description = Planned();
    const Engine engine(description, [&now] { return now; });
    EXPECT_EQ(std::get<Reading>(engine.Read("7")).value, Value(std::int64_t{800}));
    now = 600;
    EXPECT_EQ(std::get<Reading>(engine.Read("7")).text, "ON");
    now = 900;
    EXPECT_EQ(std::get<EngineError>(engine.Read("7")), EngineError::ReadFailed);
}

TEST_F(ReplayPlanTest, Writes_SucceedOrFailAsTheyDid) {
    const auto write = [&](const char* value, HRESULT result) {
        Call(service::ParameterService, operation::SetParameter,
             {{argument::id, "8"}, {argument::kind, std::int64_t{1}}, {argument::value, value}}, result);
        time += 100;
    };
    write("1", S_OK);
    write("2", E_BOUNDS);
    write("3", E_ABORT);
    std::int64_t now = 0;
    const EngineDescription description = Planned();
    Engine engine(description, [&now] { return now; });
    EXPECT_EQ(engine.Write("8", "1"), std::nullopt);
    now = 100;
    EXPECT_EQ(engine.Write("8", "2"), EngineError::OutOfLimits);
    now = 200;
    EXPECT_EQ(engine.Write("8", "3"), EngineError::OutOfLimits) << "what the host refused was not written";
}

TEST_F(ReplayPlanTest, FaultRecords_ComeAndGoAsTheyDid) {
    const auto look = [&](std::vector<const char*> codes) {
        Call(service::ParameterService, operation::GetParameter,
             {{argument::id, "9"}, {argument::kind, std::int64_t{2}}});
        Call(service::FaultArray, operation::get_Records, {});
        Call(service::FaultRecordList, operation::get_Count,
             {{argument::count, static_cast<std::int64_t>(codes.size())}});
        for (std::size_t i = 0; i < codes.size(); ++i) {
            Call(service::FaultRecordList, operation::get_Item,
                 {{argument::index, static_cast<std::int64_t>(i + 1)}});
            Call(service::FaultRecord, operation::get_Item, {{argument::index, std::int64_t{1}}});
            Call(service::FaultField, operation::get_Name, {{argument::value, "code"}});
            Call(service::FaultField, operation::get_Value, {{argument::value, codes[i]}});
        }
        time += 100;
    };
    look({"190", "191"});
    look({});
    look({"191"});
    std::int64_t now = 0;
    const EngineDescription description = Planned();
    const Engine engine(description, [&now] { return now; });
    const auto codes = [&] {
        std::string text;
        for (const std::size_t place : engine.FaultRecords("9"))
            text += description.faultArrays.at("9").at(place).fields.at(0).value + ' ';
        return text;
    };
    EXPECT_EQ(codes(), "190 191 ");
    now = 100;
    EXPECT_EQ(codes(), "");
    now = 200;
    EXPECT_EQ(codes(), "191 ");
    EXPECT_EQ(description.faultArrays.at("9").size(), 2U) << "the same record stands once";
}

TEST_F(ReplayPlanTest, Answers_KeepTheirOrderAndDelay) {
    const auto ask = [&](const Value& answer, const Value& by) {
        Event(event::PromptShown, {{argument::kind, "text"}, {argument::text, "?"}});
        time += 250;
        Event(event::PromptClosed, {{argument::answer, answer}, {argument::by, by}});
    };
    ask("one", "operator");
    ask("two", "default");
    ask(std::int64_t{3}, "answers");
    RecordedOperator answering(PlanReplay(m_records).answers);
    const auto next = [&] { return answering.Ask({}, [] { return false; }); };
    EXPECT_EQ(next(), (Answer{"one", "operator", 250}));
    EXPECT_EQ(next(), std::nullopt);
    EXPECT_EQ(next()->value, Value(std::int64_t{3}));
    EXPECT_EQ(next(), std::nullopt) << "there are no more";
}

/// A run of the bench's procedure with these steps, and its replay with `others`.
std::vector<JournalDifference> Replayed(const std::string& steps, const std::string& others) {
    const RunOutcome recorded = RunSteps(steps);
    Procedure procedure = ProcedureOf(warmUpBench + others);
    ReplayPlan plan = PlanReplay(recorded.records);
    procedure.engine = std::move(plan.engine);
    RecordedOperator answering(std::move(plan.answers));
    const RunOutcome replayed = RunProcedure(procedure, {.answering = &answering});
    return CompareJournals(ComparableRecords(recorded.records), ComparableRecords(replayed.records),
                           {.time = 0});
}

const std::string steps =
    "[steps.s]\nrun = ['guard', 'load', 'open', 'loadLost', 'burst']\nmayFail = ['burst', 'loadLost']\n"
    "until = 'warm'\ntimeout = '70s'\nfailed = 'good'\non = { tripped = 'bad' }\nnext = 'good'\n";

TEST(Replay, SameProcedure_DoesTheSame) {
    const std::vector<JournalDifference> differences = Replayed(steps, steps);
    EXPECT_TRUE(differences.empty()) << differences.front().place << ": " << differences.front().text;
}

TEST(Replay, OtherProcedure_Differs) {
    std::string others = steps;
    others.replace(others.find("'load', "), 8, "");
    EXPECT_FALSE(Replayed(steps, others).empty());
}

} // namespace

} // namespace vant::host
