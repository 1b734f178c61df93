#include "vant/LiveStatus.h"

#include "tests/unit/host/RecordFixture.h"

#include <gtest/gtest.h>

namespace vant::program {

using namespace host;

namespace {

class LiveStatusTest : public RecordFixture {
protected:
    /// A command that begins on a thread "Worker 1".
    void Begin(const char* command, const char* className, const char* property, const char* value) {
        Event(event::CommandCreated, {{argument::className, className}}, command, S_OK);
        Event(event::PropertySet, {{argument::name, property}, {argument::value, value}}, command, S_OK);
        BeginThread(1, command);
    }
    void Read() { Call(service::Parameter, operation::get_Value, {}, S_OK, ""); }

    LiveStatus status;

private:
    void Take(const Record& record) override { status.Take(record); }
};

TEST_F(LiveStatusTest, OutsideSteps_IsEmpty) {
    EXPECT_EQ(status.Text(0), "");
    BeginProcedure("Test");
    EXPECT_EQ(status.Text(0), "");
    EnterStep("a");
    EXPECT_EQ(status.Text(1999), "step a  0:01");
    Event(event::ProcedureEnded);
    EXPECT_EQ(status.Text(0), "");
}

TEST_F(LiveStatusTest, Wait_IsShownWithItsTimeLimitAndConditionUntilTheStepIsLeft) {
    Event(event::ProcedureStarted);
    EnterStep("a");
    time = 5000;
    Event(event::WaitStarted,
          {{argument::waitsFor, "conditions 'hot'"}, {argument::limit, std::int64_t{60'000}}});
    Call(service::ConditionSet, operation::Evaluate,
         {{argument::name, "hot"},
          {argument::failed, "data x above 5"},
          {argument::data, "x"},
          {argument::limits, "above 5"},
          {argument::value, "4"},
          {argument::allMet, false}},
         S_OK, "");
    EXPECT_EQ(status.Text(35'000),
              "step a  0:35  waits for conditions 'hot' (0:30 of at most 1:00): data x 4, required above 5");
    EnterStep("b");
    EXPECT_EQ(status.Text(35'000), "step b  0:35");
}

TEST_F(LiveStatusTest, CommandsThatRunOn_AreShownUntilTheirThreadsEnd) {
    Event(event::ProcedureStarted);
    EnterStep("a");
    BeginThread(1, "guard");
    BeginThread(2, "show");
    EXPECT_EQ(status.Text(0), "step a  0:00  running: guard, show");
    thread = "Worker 1";
    Event(event::ThreadEnded);
    EXPECT_EQ(status.Text(0), "step a  0:00  running: show");
}

TEST_F(LiveStatusTest, ProgressOfASampler_IsInReadings) {
    Event(event::ProcedureStarted);
    EnterStep("a");
    Begin("mean", "ParameterSampler", "numSamples", "20");
    thread = "Worker 1";
    Read();
    Read();
    thread = "Worker 2";
    Read();
    EXPECT_EQ(status.Text(0), "step a  0:00  running: mean (2 of 20 readings)");
}

TEST_F(LiveStatusTest, ProgressOfATimer_IsInTime) {
    Event(event::ProcedureStarted);
    time = 5000;
    EnterStep("a");
    Begin("count", "Timer", "length", "90");
    EXPECT_EQ(status.Text(17'000), "step a  0:17  running: count (0:12 of 1:30)");
    Begin("other", "Timer", "dsLength", "entry");
    EXPECT_EQ(status.Text(17'000), "step a  0:17  running: other");
}

TEST_F(LiveStatusTest, CalledProcedure_IsShownBehindItsCaller) {
    Event(event::ProcedureStarted);
    EnterStep("a");
    Event(event::ProcedureStarted);
    EnterStep("b");
    EXPECT_EQ(status.Text(0), "step a, step b  0:00");
    Event(event::ProcedureEnded);
    EXPECT_EQ(status.Text(0), "step a  0:00");
    Event(event::FinallyStarted);
    EXPECT_EQ(status.Text(0), "clean-up  0:00");
}

} // namespace

} // namespace vant::program
