#include "vant/ConsoleReport.h"

#include "tests/unit/host/RecordFixture.h"

#include <gtest/gtest.h>
#include <regex>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace vant::program {

using namespace host;

namespace {

class ConsoleReportTest : public RecordFixture {
protected:
    void Begin(ConsoleReport::Style style = {}) {
        report.emplace(out, style);
        BeginProcedure("Test");
    }
    void Measure(const char* name, Value value, const char* verdict) {
        Event(event::Measured, {{argument::name, name},
                                {argument::data, name},
                                {argument::value, std::move(value)},
                                {argument::units, "V"},
                                {argument::limits, "atMost 4"},
                                {argument::verdict, verdict},
                                {argument::at, std::int64_t{61'400}},
                                {argument::step, "measure"},
                                {argument::description, ""}});
    }
    /// What was written since the last time.
    std::string Written() {
        std::string text = out.str();
        out.str("");
        return text;
    }

    std::ostringstream out;
    std::optional<ConsoleReport> report;

private:
    void Take(const Record& record) override { (*report)(record); }
};

TEST_F(ConsoleReportTest, Beginning_DescribesTheProcedure) {
    report.emplace(out, ConsoleReport::Style{});
    Event(event::ProcedureStarted, {{argument::name, "Test"},
                                    {argument::description, "A test."},
                                    {argument::revision, "3"},
                                    {argument::author, "Jane"}});
    Event(event::TagGiven, {{argument::name, "serial"}, {argument::value, "4711"}});
    EXPECT_EQ(Written(), "Test\n  A test.\n  revision 3\n  author Jane\n  serial = 4711\n");
}

TEST_F(ConsoleReportTest, RepeatedLineOfAThread_IsWrittenOnceInEachStep) {
    Begin();
    EnterStep("first");
    thread = "Worker 1";
    Show("wait");
    Show("wait");
    Show("go on");
    Show("wait");
    EnterStep("second");
    Show("wait");
    Show("wait");
    EXPECT_EQ(Written(), "Test\n\nstep first\n  instruction: wait\n  instruction: go on\n"
                         "\nstep second\n  instruction: wait\n");
}

TEST_F(ConsoleReportTest, RepeatedLineOfTheRunnersThread_IsWrittenEachTime) {
    Begin();
    Show("wait");
    Show("wait");
    EXPECT_EQ(Written(), "Test\n  instruction: wait\n  instruction: wait\n");
}

TEST_F(ConsoleReportTest, Command_IsWrittenWithTheValuesThatItUsed) {
    Begin();
    DescribeSpeed();
    EnterStep("first");
    Call(service::Parameter, operation::get_Value, {{argument::id, "7"}, {argument::value, 800.0}});
    Call(service::ParameterService, operation::SetParameter, {{argument::id, "8"}, {argument::value, "on"}});
    Call(service::DataStore, operation::SetValue, {{argument::name, "drop"}, {argument::value, "120"}});
    Call(service::DataStore, operation::SetValue, {{argument::name, "note"}, {argument::value, ""}});
    Call(service::DataStore, operation::SetValue, {{argument::name, "more"}, {argument::value, "1"}});
    Written();
    EndCommand("work");
    EXPECT_EQ(Written(),
              "  work             Calculator                ok  Speed = 800 1/min, 8 set to on, drop = 120, "
              "note = \"\", 1 more\n");
}

TEST_F(ConsoleReportTest, Failures_AreInWords) {
    Begin();
    EnterStep("first");
    Written();
    Call(service::DataStore, operation::GetValue, {{argument::name, "drop"}},
         HRESULT_FROM_WIN32(ERROR_NOT_FOUND));
    EndCommand("work", E_FAIL);
    EXPECT_EQ(Written(),
              "  call failed: DataStore GetValue name = \"drop\": not found, 0x80070490\n"
              "  work             Calculator                FAILED: unspecified failure, 0x80004005 "
              "(execute)\n");
}

TEST_F(ConsoleReportTest, CallThatFailsRepeatedly_IsWrittenOnceAndCounted) {
    Begin();
    EnterStep("first");
    Written();
    for (int i = 0; i < 3; ++i)
        Call(service::DataStore, operation::GetValue, {{argument::name, "drop"}},
             HRESULT_FROM_WIN32(ERROR_NOT_FOUND));
    EndCommand("work");
    EXPECT_EQ(Written(), "  call failed: DataStore GetValue name = \"drop\": not found, 0x80070490\n"
                         "  work             Calculator                ok, 3 calls failed\n");
}

TEST_F(ConsoleReportTest, UnmetCondition_IsToldWithNameAndUnits) {
    Begin();
    DescribeSpeed();
    EnterStep("first");
    Written();
    Evaluate(1391, "check");
    EXPECT_EQ(Written(), "  conditions 'fast' not met: Speed 1391 1/min, required atLeast 1500\n");
}

TEST_F(ConsoleReportTest, StepThatWaitsForConditions_TellsTheFirstAndTheLastValue) {
    Begin();
    EnterStep("first");
    Written();
    Event(event::WaitStarted,
          {{argument::waitsFor, "conditions 'fast'"}, {argument::limit, std::int64_t{60'000}}});
    Evaluate(1000, "");
    Evaluate(1200, "");
    Event(event::StepTimedOut, {{argument::step, "first"}, {argument::reason, "it has waited"}});
    EXPECT_EQ(Written(), "  waits for conditions 'fast', at most 1 min\n"
                         "  conditions 'fast' not met: 7 1000, required atLeast 1500\n"
                         "  time ran out: it has waited; at last 7 1200, required atLeast 1500\n");
}

TEST_F(ConsoleReportTest, Step_IsWrittenWithItsDurationIfItLasted) {
    Begin();
    EnterStep("first");
    time = 20;
    Follow("second");
    EnterStep("second");
    time = 2524;
    Follow("third");
    EnterStep("third");
    time = 4524;
    EndProcedure("aborted");
    EXPECT_EQ(Written(), "Test\n\nstep first\n  -> second\n\nstep second\n  -> third (2.5 s)\n"
                         "\nstep third\n  ended (2 s)\n\naborted: because\n");
}

TEST_F(ConsoleReportTest, CalledProcedure_IsIndented) {
    Begin();
    EnterStep("outer");
    BeginProcedure("Inner");
    EnterStep("first");
    EndCommand("work");
    Follow("second");
    EnterStep("second");
    Event(event::DataLeft, {{argument::name, "drop"}, {argument::value, "3"}});
    EndProcedure("passed");
    Follow("last");
    EXPECT_EQ(Written(), "Test\n\nstep outer\n  procedure Inner\n    step first\n"
                         "      work             Calculator                ok\n      -> second\n"
                         "    step second\n    passed: because\n  -> last\n");
}

TEST_F(ConsoleReportTest, RepeatedTries_AreCounted) {
    Begin();
    EnterStep("first");
    for (std::int64_t attempt = 2; attempt <= 11; ++attempt) {
        EndCommand("work", E_FAIL);
        Event(event::StepRetried, {{argument::step, "first"},
                                   {argument::attempt, attempt},
                                   {argument::reason, "command 'work' failed"}});
    }
    EndCommand("work");
    const std::string text = Written();
    EXPECT_NE(text.find("  try 2: command 'work' failed\n"), std::string::npos) << text;
    EXPECT_NE(text.find("\n... another try of step first 6 more times\n  work "), std::string::npos) << text;
}

TEST_F(ConsoleReportTest, End_HasDataMeasurementsAndWhatIsLeft) {
    Begin();
    EnterStep("measure");
    Event(event::FinallyStarted);
    EndCommand("reset");
    Event(event::DataLeft, {{argument::name, "drop"}, {argument::value, "3"}});
    Written();
    Measure("drop", "3", "passed");
    Measure("long name", nullptr, "missing");
    Event(event::ParameterLeft, {{argument::id, "13190"},
                                 {argument::name, "Throttle"},
                                 {argument::value, std::int64_t{35}},
                                 {argument::was, std::int64_t{0}}});
    EndProcedure("error");
    EXPECT_EQ(Written(), "\nmeasurements\n"
                         "  drop       3 V  atMost 4  passed   1:01 in measure\n"
                         "  long name       atMost 4  missing  1:01 in measure\n"
                         "\nleft at: 13190 = 35, was 0\n\nerror: because\n");
}

TEST_F(ConsoleReportTest, Loop_IsBounded) {
    Begin();
    for (int i = 0; i < 1000; ++i) {
        EnterStep("a");
        Call(service::DataStore, operation::SetValue,
             {{argument::name, "n"}, {argument::value, std::to_string(i)}});
        EndCommand("work");
        Follow("a");
    }
    EndProcedure("error");
    const std::string text = Written();
    EXPECT_NE(text.find("  n = 2\n  -> a\n\n... step a 997 more times\n\nerror: because\n"),
              std::string::npos)
        << text;
}

TEST_F(ConsoleReportTest, QuietReport_HasVerdictAndMeasurementsThatDidNotPass) {
    Begin({.detail = Detail::Quiet});
    EnterStep("measure");
    Show("wait");
    Measure("drop", "3", "passed");
    Measure("rest", "5", "failed");
    EndProcedure("failed");
    EXPECT_EQ(Written(), "rest  5 V  atMost 4  failed  1:01 in measure\nfailed: because\n");
}

TEST_F(ConsoleReportTest, VerboseReport_HasEveryCall) {
    Begin({.detail = Detail::Verbose});
    EnterStep("measure");
    Written();
    time = 250;
    Call(service::DataStore, operation::GetValue, {{argument::name, "a"}, {argument::value, "1"}});
    Call(service::DataStore, operation::GetValue, {{argument::name, "b"}},
         HRESULT_FROM_WIN32(ERROR_NOT_FOUND));
    EXPECT_EQ(Written(), "  0:00.250 work: DataStore GetValue name = \"a\", value = \"1\": done, 0x00000000\n"
                         "  0:00.250 work: DataStore GetValue name = \"b\": not found, 0x80070490\n");
}

TEST_F(ConsoleReportTest, Interlude_ComesBehindWhatWasHeldBack) {
    Begin();
    EnterStep("a");
    EnterStep("a");
    EXPECT_EQ(Written(), "Test\n\nstep a\n");
    { const ConsoleReport::Interlude interlude(*report); }
    EXPECT_EQ(Written(), "\nstep a\n");
}

TEST_F(ConsoleReportTest, LiveLine_IsErasedBeforeOtherTextAndAtTheEnd) {
    report.emplace(out, ConsoleReport::Style{});
    report->GoLive([this] { return time; });
    BeginProcedure("Test");
    time = 61'500;
    EnterStep("a");
    EndCommand("work");
    report.reset();
    const std::string text = Written();
    EXPECT_NE(text.find("\x1b[?7lstep a  1:01\x1b[?7h\r\x1b[K"), std::string::npos) << text;
    const std::regex drawnAndErased("\x1b\\[\\?7l[^\x1b]*\x1b\\[\\?7h\r\x1b\\[K");
    EXPECT_EQ(std::regex_replace(text, drawnAndErased, ""),
              "Test\n\nstep a\n  work             Calculator                ok\n");
}

} // namespace

} // namespace vant::program
