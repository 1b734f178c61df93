#include "vant/ConsoleReport.h"

#include "host/record/CallScope.h"
#include "host/record/Vocabulary.h"

#include <gtest/gtest.h>
#include <sstream>
#include <utility>

namespace vant::program {

using namespace host;

namespace {

class ConsoleReportTest : public ::testing::Test {
protected:
    void EnterStep(const char* step) {
        Record record;
        record.service = service::Runner;
        record.operation = event::StepEntered;
        record.Add(argument::step, step);
        report(record);
    }
    void Show(const char* thread, const char* text) {
        Record record;
        record.thread = thread;
        record.service = service::PresentationService;
        record.operation = operation::ShowInstruction;
        record.Add(argument::text, text);
        record.result = S_OK;
        report(record);
    }

    std::ostringstream out;
    ConsoleReport report{out, false};
};

TEST_F(ConsoleReportTest, RepeatedLineOfAThread_IsWrittenOnceInEachStep) {
    EnterStep("first");
    Show("Worker 1", "wait");
    Show("Worker 1", "wait");
    Show("Worker 1", "go on");
    Show("Worker 1", "wait");
    EnterStep("second");
    Show("Worker 1", "wait");
    Show("Worker 1", "wait");
    EXPECT_EQ(out.str(), "\nstep first\n  instruction: wait\n  instruction: go on\n"
                         "\nstep second\n  instruction: wait\n");
}

TEST_F(ConsoleReportTest, RepeatedLineOfTheRunnersThread_IsWrittenEachTime) {
    Show(mainThread, "wait");
    Show(mainThread, "wait");
    EXPECT_EQ(out.str(), "  instruction: wait\n  instruction: wait\n");
}

} // namespace

} // namespace vant::program
