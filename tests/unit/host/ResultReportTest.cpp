#include "host/record/ResultReport.h"

#include "tests/unit/host/RecordFixture.h"

#include <gtest/gtest.h>

namespace vant::host {

namespace {

class ResultReportTest : public RecordFixture {
protected:
    const Json& Result() { return report.Result(); }
    const Json& Step(std::size_t index) { return report.Result()["steps"][index]; }

    ResultReport report;

private:
    void Take(const Record& record) override { report(record); }
};

TEST_F(ResultReportTest, Procedure_IsDescribedWithTagsVerdictAndDuration) {
    Event(event::ProcedureStarted, {{argument::name, "Check"},
                                    {argument::description, "A check."},
                                    {argument::revision, "3"},
                                    {argument::author, "Jane"}});
    Event(event::TagGiven, {{argument::name, "serial"}, {argument::value, "4711"}});
    Event(event::ParameterGiven,
          {{argument::id, "100"}, {argument::name, "Speed"}, {argument::units, "1/min"}});
    Event(event::DataLeft, {{argument::name, "drop"}, {argument::value, "3"}});
    Event(event::ParameterLeft, {{argument::id, "100"},
                                 {argument::name, "Speed"},
                                 {argument::value, std::int64_t{35}},
                                 {argument::was, std::int64_t{0}}});
    time = 2500;
    EndProcedure("passed");
    EXPECT_EQ(Result().dump(),
              R"({"format":1,"procedure":{"name":"Check","description":"A check.","revision":"3",)"
              R"("author":"Jane"},"tags":{"serial":"4711"},"verdict":"passed","reason":"because","start":0,)"
              R"("duration":2500,"steps":[],"finally":null,"measurements":[],"data":{"drop":"3"},)"
              R"("parameters":{"100":{"name":"Speed","units":"1/min"}},)"
              R"("left":[{"id":"100","name":"Speed","value":35,"was":0}]})");
}

TEST_F(ResultReportTest, Step_HasCommandsInstructionsDisplayAndNext) {
    BeginProcedure("Check");
    EnterStep("measure");
    EndCommand("drop", E_FAIL);
    Show("Wait");
    Show("Go on");
    const auto setNeedle = [&](const char* value, HRESULT result) {
        Call(service::ComponentService, operation::SetComponentProperty,
             {{argument::componentId, "gauge"}, {argument::name, "needle"}, {argument::value, value}},
             result);
    };
    setNeedle("1", S_OK);
    setNeedle("2", S_OK);
    setNeedle("refused", E_FAIL);
    time = 1250;
    Follow("done");
    EXPECT_EQ(
        Step(0).dump(),
        R"({"step":"measure","description":null,"start":0,"duration":1250,"commands":[{"command":"drop",)"
        R"("class":"Calculator","caller":null,"phase":"execute","result":"0x80004005",)"
        R"("meaning":"unspecified failure","start":0,"duration":0,"values":[],"failedCalls":[]}],"threads":[],)"
        R"("unmet":[],"missing":[],"instructions":["Wait","Go on"],"prompts":[],"display":{"gauge":{"needle":"2"}},)"
        R"("waits":[],"retries":[],"timedOut":null,"procedure":null,"next":"done"})");
}

TEST_F(ResultReportTest, StepWithoutTransition_EndsWithTheProcedure) {
    BeginProcedure("Check");
    EnterStep("measure");
    time = 700;
    EndProcedure("failed");
    EXPECT_EQ(Step(0)["duration"], 700);
    EXPECT_EQ(Step(0)["next"], nullptr);
}

TEST_F(ResultReportTest, Command_HasItsValuesAndFailedCalls) {
    BeginProcedure("Check");
    EnterStep("measure");
    time = 100;
    Event(event::CommandCreated, {}, "load", S_OK);
    Call(service::Parameter, operation::get_Text, {{argument::id, "7"}, {argument::value, "1"}}, S_OK,
         "load");
    Call(service::Parameter, operation::get_Text, {{argument::id, "7"}, {argument::value, "2"}}, S_OK,
         "load");
    Call(service::DataStore, operation::SetValue, {{argument::name, "a"}, {argument::value, "2"}}, S_OK,
         "load");
    Call(service::DataStore, operation::GetValue, {{argument::name, "b"}, {argument::value, "9"}}, S_OK,
         "load");
    time = 150;
    for (int i = 0; i < 3; ++i)
        Call(service::ParameterService, operation::SetParameter, {{argument::id, "7"}}, E_ACCESSDENIED,
             "load");
    time = 400;
    EndCommand("load");
    const Json& command = Step(0)["commands"][0];
    EXPECT_EQ(command["start"], 100);
    EXPECT_EQ(command["duration"], 300);
    EXPECT_EQ(command["values"].dump(), R"([{"kind":"read","name":"7","value":"2"},)"
                                        R"({"kind":"written","name":"a","value":"2"}])");
    EXPECT_EQ(command["failedCalls"].dump(),
              R"([{"service":"ParameterService","operation":"SetParameter","arguments":{"id":"7"},)"
              R"("result":"0x80070005","meaning":"read-only","time":150,"times":3}])");
}

TEST_F(ResultReportTest, ThreadOfACommand_HasItsOwnValuesInTheStepInWhichItEnds) {
    BeginProcedure("Check");
    EnterStep("sample");
    Event(event::CommandCreated, {}, "sample", S_OK);
    EndCommand("sample");
    EnterStep("later");
    thread = "Worker 1";
    time = 1000;
    Call(service::Parameter, operation::get_Value, {{argument::id, "7"}, {argument::value, 1.5}}, S_OK,
         "sample");
    time = 3000;
    Event(event::ThreadEnded, {{argument::cookie, std::int64_t{1}}}, "sample", S_OK);
    EXPECT_EQ(Step(1)["threads"].dump(),
              R"([{"command":"sample","thread":"Worker 1","result":"0x00000000","meaning":"done",)"
              R"("start":1000,"duration":2000,"values":[{"kind":"read","name":"7","value":1.5}],)"
              R"("failedCalls":[]}])");
}

TEST_F(ResultReportTest, UnmetConditions_AreListedOnceWithTheLastValue) {
    BeginProcedure("Check");
    DescribeSpeed();
    EnterStep("measure");
    for (const double value : {1200.0, 1391.0}) {
        time += 250;
        Evaluate(value, "");
    }
    EXPECT_EQ(Step(0)["unmet"].dump(),
              R"([{"conditions":"fast","condition":"parameter 7 atLeast 1500","value":1391.0,)"
              R"("description":"Speed 1391 1/min, required atLeast 1500","time":500}])");
}

TEST_F(ResultReportTest, WaitsRetriesAndTimeOut_AreThoseOfTheStep) {
    BeginProcedure("Check");
    EnterStep("measure");
    Event(event::WaitStarted, {{argument::waitsFor, "a transition"}, {argument::limit, std::int64_t{60000}}});
    Event(event::StepRetried, {{argument::step, "measure"},
                               {argument::attempt, std::int64_t{2}},
                               {argument::reason, "command 'x' failed"}});
    Event(event::StepTimedOut, {{argument::step, "measure"}, {argument::reason, "it has waited"}});
    Event(event::ResultMissing, {{argument::name, "dsResult"}, {argument::value, "drop"}}, "calculate");
    EXPECT_EQ(Step(0)["waits"].dump(), R"([{"for":"a transition","limit":60000,"start":0}])");
    EXPECT_EQ(Step(0)["retries"].dump(), R"([{"attempt":2,"reason":"command 'x' failed","time":0}])");
    EXPECT_EQ(Step(0)["timedOut"], "it has waited");
    EXPECT_EQ(Step(0)["missing"].dump(), R"([{"command":"calculate","property":"dsResult","data":"drop"}])");
}

TEST_F(ResultReportTest, CleanUp_HasItsOwnCommands) {
    BeginProcedure("Check");
    EnterStep("done");
    time = 100;
    Event(event::FinallyStarted);
    EndCommand("reset");
    time = 150;
    EndProcedure("passed");
    EXPECT_EQ(Step(0)["duration"], 100);
    EXPECT_TRUE(Step(0)["commands"].empty());
    EXPECT_EQ(Result()["finally"]["commands"][0]["command"], "reset");
    EXPECT_EQ(Result()["finally"]["duration"], 50);
}

TEST_F(ResultReportTest, CalledProcedure_IsAResultWithinItsStep) {
    BeginProcedure("Outer");
    EnterStep("first");
    BeginThread(1, "guard");
    BeginProcedure("Inner");
    EnterStep("first");
    Show("inner");
    thread = "Worker 1";
    Show("outer");
    thread = mainThread;
    time = 40;
    EndProcedure("failed");
    EndCommand("after");
    EndProcedure("passed");
    const Json& inner = Step(0)["procedure"];
    EXPECT_EQ(inner["procedure"]["name"], "Inner");
    EXPECT_EQ(inner["verdict"], "failed");
    EXPECT_EQ(inner["duration"], 40);
    EXPECT_EQ(inner["steps"][0]["instructions"].dump(), R"(["inner"])");
    EXPECT_FALSE(inner.contains("format"));
    EXPECT_EQ(Step(0)["instructions"].dump(), R"(["outer"])");
    EXPECT_EQ(Step(0)["commands"][0]["command"], "after");
    EXPECT_EQ(Result()["verdict"], "passed");
}

TEST_F(ResultReportTest, CallsOfCommands_AreNotTakenForEvents) {
    const Json before = report.Result();
    Call(service::DataStore, event::ProcedureEnded, {{argument::verdict, "passed"}}, S_OK);
    EXPECT_EQ(report.Result(), before);
}

TEST_F(ResultReportTest, EndlessRun_IsKeptUpToTheLimit) {
    for (std::size_t i = 0; i < ResultReport::mostEntries + 5; ++i) {
        EnterStep("again");
        Follow("again");
    }
    Show("late");
    EXPECT_EQ(Result()["steps"].size(), ResultReport::mostEntries);
    EXPECT_EQ(Result()["omitted"], 5);
    EXPECT_EQ(Result()["steps"].back()["next"], "again");
    EXPECT_TRUE(Result()["steps"].back()["instructions"].empty());
}

TEST_F(ResultReportTest, ManyInstructionsOfAStep_AreKeptUpToTheLimit) {
    EnterStep("long");
    for (std::size_t i = 0; i < ResultReport::mostEntries; ++i)
        Show("again");
    EXPECT_EQ(Step(0)["instructions"].size(), ResultReport::mostEntries - 1);
    EXPECT_EQ(Result()["omitted"], 1);
}

} // namespace

} // namespace vant::host
