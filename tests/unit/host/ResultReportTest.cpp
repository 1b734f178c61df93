#include "host/record/ResultReport.h"

#include "host/record/Vocabulary.h"

#include <gtest/gtest.h>

namespace vant::host {

namespace {

Record Event(const char* operation, std::vector<Argument> arguments) {
    Record record;
    record.service = service::Runner;
    record.operation = operation;
    record.arguments = std::move(arguments);
    return record;
}

Record Call(const char* operation, std::vector<Argument> arguments, HRESULT result) {
    Record record = Event(operation, std::move(arguments));
    record.service = "Service";
    record.result = result;
    return record;
}

TEST(ResultReport, CollectsTheRunnersRecords) {
    ResultReport report;
    report(Event(event::ProcedureStarted, {{argument::name, "Check"}}));
    report(Event(event::StepEntered, {{argument::step, "measure"}}));
    Record ended = Event(
        event::CommandEnded,
        {{argument::className, "Calculator"}, {argument::caller, nullptr}, {argument::phase, "execute"}});
    ended.command = "drop";
    ended.result = E_FAIL;
    report(ended);
    report(Call(operation::ShowInstruction, {{argument::text, "Wait"}}, S_OK));
    report(Call(operation::ShowInstruction, {{argument::text, "Go on"}}, S_OK));
    const auto setNeedle = [&](const char* value, HRESULT result) {
        report(Call(operation::SetComponentProperty,
                    {{argument::componentId, "gauge"}, {argument::name, "needle"}, {argument::value, value}},
                    result));
    };
    setNeedle("1", S_OK);
    setNeedle("2", S_OK);
    setNeedle("refused", E_FAIL);
    report(Event(event::TransitionFollowed, {{argument::from, "measure"}, {argument::to, "done"}}));
    report(Event(event::StepEntered, {{argument::step, "done"}}));
    report(Event(event::DataLeft, {{argument::name, "drop"}, {argument::value, "3"}}));
    report(Event(event::ProcedureEnded, {{argument::verdict, "passed"}, {argument::reason, "step 'done'"}}));
    EXPECT_EQ(report.Result().dump(),
              R"({"procedure":"Check","verdict":"passed","reason":"step 'done'","steps":[{"step":"measure",)"
              R"("commands":[{"command":"drop","class":"Calculator","caller":null,"phase":"execute",)"
              R"("result":"0x80004005"}],"instructions":["Wait","Go on"],"display":{"gauge":{"needle":"2"}},)"
              R"("next":"done"},{"step":"done","commands":[],"instructions":[],"display":{},"next":null}],)"
              R"("data":{"drop":"3"}})");
}

TEST(ResultReport, CallsOfCommands_AreNotTakenForEvents) {
    ResultReport report;
    const Json before = report.Result();
    Record call = Event(event::ProcedureEnded, {{argument::verdict, "passed"}});
    call.service = service::DataStore;
    report(call);
    EXPECT_EQ(report.Result(), before);
}

TEST(ResultReport, EndlessRun_IsKeptUpToTheLimit) {
    ResultReport report;
    for (std::size_t i = 0; i < ResultReport::mostEntries + 5; ++i) {
        report(Event(event::StepEntered, {{argument::step, "again"}}));
        report(Event(event::TransitionFollowed, {{argument::from, "again"}, {argument::to, "again"}}));
    }
    report(Call(operation::ShowInstruction, {{argument::text, "late"}}, S_OK));
    EXPECT_EQ(report.Result()["steps"].size(), ResultReport::mostEntries);
    EXPECT_EQ(report.Result()["omitted"], 5);
    EXPECT_EQ(report.Result()["steps"].back()["next"], "again");
    EXPECT_TRUE(report.Result()["steps"].back()["instructions"].empty());
}

TEST(ResultReport, ManyInstructionsOfAStep_AreKeptUpToTheLimit) {
    ResultReport report;
    report(Event(event::StepEntered, {{argument::step, "long"}}));
    for (std::size_t i = 0; i < ResultReport::mostEntries; ++i)
        report(Call(operation::ShowInstruction, {{argument::text, "again"}}, S_OK));
    EXPECT_EQ(report.Result()["steps"][0]["instructions"].size(), ResultReport::mostEntries - 1);
    EXPECT_EQ(report.Result()["omitted"], 1);
}

} // namespace

} // namespace vant::host
