#include "host/record/ResultReport.h"

#include <gtest/gtest.h>

namespace vant::host {

namespace {

Record Event(const char* operation, std::vector<Argument> arguments) {
    Record record;
    record.service = "Runner";
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

TEST(ResultReport, IsMadeFromTheRunnersRecords) {
    ResultReport report;
    report(Event("ProcedureStarted", {{"name", "Check"}}));
    report(Event("StepEntered", {{"step", "measure"}}));
    Record ended =
        Event("CommandEnded", {{"class", "Calculator"}, {"caller", nullptr}, {"phase", "execute"}});
    ended.command = "drop";
    ended.result = E_FAIL;
    report(ended);
    report(Call("ShowInstruction", {{"text", "Wait"}}, S_OK));
    report(Call("ShowInstruction", {{"text", "Go on"}}, S_OK));
    const auto setNeedle = [&](const char* value, HRESULT result) {
        report(Call("SetComponentProperty", {{"componentId", "gauge"}, {"name", "needle"}, {"value", value}},
                    result));
    };
    setNeedle("1", S_OK);
    setNeedle("2", S_OK);
    setNeedle("refused", E_FAIL);
    report(Event("TransitionFollowed", {{"from", "measure"}, {"to", "done"}}));
    report(Event("StepEntered", {{"step", "done"}}));
    report(Event("DataLeft", {{"name", "drop"}, {"value", "3"}}));
    report(Event("ProcedureEnded", {{"verdict", "passed"}, {"reason", "step 'done'"}}));
    EXPECT_EQ(report.Result().dump(),
              R"({"procedure":"Check","verdict":"passed","reason":"step 'done'","steps":[{"step":"measure",)"
              R"("commands":[{"command":"drop","class":"Calculator","caller":null,"phase":"execute",)"
              R"("result":"0x80004005"}],"instructions":["Wait","Go on"],"display":{"gauge":{"needle":"2"}},)"
              R"("next":"done"},{"step":"done","commands":[],"instructions":[],"display":{},"next":null}],)"
              R"("data":{"drop":"3"}})");
}

TEST(ResultReport, OtherCallsOfCommands_AreNoPartOfIt) {
    ResultReport report;
    const Json before = report.Result();
    Record call = Event("ProcedureEnded", {{"verdict", "passed"}});
    call.service = "DataStore";
    report(call);
    EXPECT_EQ(report.Result(), before);
}

} // namespace

} // namespace vant::host
