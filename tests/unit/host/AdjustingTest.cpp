// What ends a step while a command adjusts on the runner's thread, in virtual time, with the built module.

#include "host/record/Vocabulary.h"
#include "tests/unit/host/RunOutcome.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace vant::host {

namespace {

/// A throttle and the speed that an adjuster never reaches. A test adds step "s".
const std::string throttleBench = R"(
name = 'n'
start = 's'
[engine.parameters."110142"]
value = 0
max = 100
[engine.parameters."101000"]
value = 800
[engine.parameters."199236"]
value = 8
[commands.adjust]
class = 'SampledThrottleAdjuster'
properties = { successTransition = 'bad', failTransition = 'bad' }
[commands.write]
class = 'ParameterWriter'
properties = { parameterID = '110142', value = '0' }
[steps.good]
end = 'passed'
[steps.bad]
end = 'failed'
)";

TEST(Adjusting, Timeout_RefusesItsWrites) {
    const RunOutcome outcome = RunProcedure(ProcedureOf(throttleBench + R"([steps.s]
run = ['adjust']
timeout = '12s'
timedOut = 'late'
next = 'bad'
[steps.late]
run = ['write']
next = 'good'
)"));
    EXPECT_EQ(outcome.verdict, Verdict::Passed) << outcome.reason;
    EXPECT_GE(outcome.TimeOf(event::StepTimedOut), 12'000);
    EXPECT_EQ(outcome.Of(operation::SetParameter, "adjust").back().result, E_ABORT);
    EXPECT_EQ(outcome.Of(operation::SetParameter, "write").back().result, S_OK);
}

TEST(Adjusting, Abort_EndsWithTheNextWrite) {
    int writes = 0;
    const RunOutcome outcome =
        RunProcedure(ProcedureOf(throttleBench + "[steps.s]\nrun = ['adjust']\nnext = 'bad'\n"), {},
                     [&writes](const Record& record) {
                         return record.operation == operation::SetParameter && ++writes == 3;
                     });
    EXPECT_EQ(outcome.verdict, Verdict::Aborted);
    std::vector<HRESULT> results;
    for (const Record& record : outcome.Of(operation::SetParameter))
        results.push_back(*record.result);
    EXPECT_EQ(results, (std::vector<HRESULT>{S_OK, S_OK, S_OK, E_ABORT}));
}

} // namespace

} // namespace vant::host
