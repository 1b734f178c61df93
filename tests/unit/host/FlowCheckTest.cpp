#include "host/procedure/FlowCheck.h"

#include "host/procedure/ProcedureReader.h"

#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace vant::host {

namespace {

/// What procedures are made of, each part with the name that it is used by.
const std::pair<std::string, std::string> parts[] = {
    {"'guard'", "[commands.guard]\nclass = 'StopConditionMonitor'\n"
                "properties = { dsSetID = 'safe', failTransitionID = 'unsafe', dsMessageID = 'reason' }\n"},
    {"'second'", "[commands.second]\nclass = 'StopConditionMonitor'\n"
                 "properties = { dsSetID = 'safe', failTransitionID = 'unsafe', dsMessageID = 'reason' }\n"},
    {"'endGuard'", "[commands.endGuard]\nclass = 'CommandTerminator'\n"
                   "properties = { commandID = 'guard' }\n"},
    {"'endGuardLater'", "[commands.endGuardLater]\nclass = 'Timer'\n"
                        "properties = { length = '5', dsBase = 'left', stopCommandID = 'endGuard' }\n"
                        "[commands.endGuard]\nclass = 'CommandTerminator'\n"
                        "properties = { commandID = 'guard' }\n"},
    {"'judge'", "[commands.judge]\nclass = 'StartConditionChecker'\nproperties = { dsSetID = 'safe', "
                "dsFailMessage = 'reason', validTransitionID = 'go', invalidTransitionID = 'stay' }\n"},
    {"'mean'", "[commands.mean]\nclass = 'ParameterSampler'\nproperties = { parameterID = '1', "
               "period = '1', numSamples = '1', dsTarget = 'm' }\n"},
    {"'good'", "[steps.good]\nend = 'passed'\n"},
    {"'bad'", "[steps.bad]\nend = 'failed'\n"}};

/// What is said about the flow of a procedure that begins with the step 'a' and has the parts that its steps
/// name. `head` are keys of the procedure.
std::string Said(const std::string& steps, const std::string& head = "") {
    std::string text = "name = 'n'\nstart = 'a'\n" + head + "\n" + steps;
    for (const auto& [name, part] : parts) {
        if ((head + steps).find(name) != std::string::npos)
            text += part;
    }
    Diagnostics found;
    const Procedure procedure = ReadProcedure(text, found);
    const std::vector<CommandUse> commands = CommandUses(procedure);
    EXPECT_EQ(found.Print("f"), "") << text;
    if (!found.HasErrors())
        CheckFlow(procedure, commands, found);
    std::string said;
    for (const Diagnostic& each : found.Sorted())
        said += each.message + '\n';
    return said;
}

const std::string lostChoice =
    "the monitor 'guard' may choose 'unsafe' in step 'b', which does not say where "
    "that leads: add it to 'on', of the step or of the procedure\n";
/// Starts the monitor and goes on while it runs.
const std::string start = "[steps.a]\nrun = ['guard']\nnext = 'b'\non = { unsafe = 'bad' }\n";

TEST(FlowCheck, TransitionNamedAsItsStep_LeadsWhereOnSays) {
    EXPECT_EQ(
        Said("[steps.a]\nnext = 'go'\n[steps.go]\nrun = ['judge']\non = { go = 'good', stay = 'bad' }\n"),
        "");
}

TEST(FlowCheck, WaitForOwnCommands_LetsEarlierOnesRunOn) {
    EXPECT_EQ(Said("[steps.a]\nrun = ['guard']\nnext = 'b'\non = { unsafe = 'bad' }\n"
                   "[steps.b]\nrun = ['mean']\nwait = 'end'\nnext = 'c'\non = { unsafe = 'bad' }\n"
                   "[steps.c]\ndelay = '1s'\nnext = 'good'\non = { unsafe = 'bad' }\n"),
              "");
}

TEST(FlowCheck, StepWithAlways_TakesEveryChoice) {
    EXPECT_EQ(Said("[steps.a]\nrun = ['judge']\nalways = 'b'\n[steps.b]\nrun = ['judge']\n"
                   "on = { go = 'good', stay = 'bad' }\n"),
              "");
}

TEST(FlowCheck, ProceduresOn_TakesWhatStepsDoNotName) {
    EXPECT_EQ(Said("[steps.a]\nrun = ['judge', 'guard']\ndelay = '1s'\nnext = 'good'\n"
                   "on = { go = 'good' }\n[steps.stop]\nnext = 'bad'\n",
                   "on = { stay = 'bad', unsafe = 'stop' }"),
              "");
}

TEST(FlowCheck, ProceduresOn_IsTheStepsForTriesAgain) {
    EXPECT_EQ(Said("[steps.a]\nrun = ['judge']\nretry = { times = 3, on = ['stay'] }\nnext = 'good'\n",
                   "on = { stay = 'bad', go = 'good' }"),
              "");
}

TEST(FlowCheck, ProceduresOn_LeadsFromStepsInWhichTheCommandMayRun) {
    // Only step 'a' could lead to 'stop', and it has a way of its own.
    EXPECT_EQ(Said("[steps.a]\nrun = ['guard']\nwait = 'transition'\nnext = 'good'\n"
                   "on = { unsafe = 'bad' }\n[steps.stop]\nnext = 'bad'\n",
                   "on = { unsafe = 'stop' }"),
              "nothing leads to step 'stop'\n");
    EXPECT_EQ(Said("[steps.a]\nrun = ['guard']\nnext = 'b'\non = { unsafe = 'bad' }\n"
                   "[steps.b]\ndelay = '1s'\nnext = 'good'\n[steps.stop]\nnext = 'bad'\n",
                   "on = { unsafe = 'stop' }"),
              "");
}

TEST(FlowCheck, CircleOfAChoiceOnAThread_IsNone) {
    // A second monitor may lead from 'stop' to 'stop', but it has ended then.
    EXPECT_EQ(Said("[steps.a]\nrun = ['guard', 'second']\ndelay = '1s'\nnext = 'good'\n"
                   "[steps.stop]\nnext = 'bad'\n",
                   "on = { unsafe = 'stop' }"),
              "");
}

TEST(FlowCheck, CircleOfAChoiceByTheProceduresOn_IsReported) {
    EXPECT_EQ(Said("[steps.a]\nrun = ['judge']\non = { go = 'good' }\n", "on = { stay = 'a' }"),
              "step 'a' leads to itself, and no time passes: add 'delay'\n");
}

TEST(FlowCheck, MonitorInAStepThatDoesNotTakeItsChoice_IsReportedOnce) {
    EXPECT_EQ(Said(start + "[steps.b]\ndelay = '1s'\nnext = 'c'\nfailed = 'a'\n"
                           "[steps.c]\nrun = ['judge']\non = { go = 'b', stay = 'good' }\n"),
              lostChoice);
}

TEST(FlowCheck, MonitorInTheStepThatStartsIt_IsReported) {
    EXPECT_EQ(Said("[steps.a]\nnext = 'b'\n[steps.b]\nrun = ['guard']\ndelay = '1s'\nnext = 'c'\n"
                   "[steps.c]\ndelay = '1s'\nnext = 'good'\non = { unsafe = 'bad' }\n"),
              lostChoice);
}

TEST(FlowCheck, MonitorThatHasEnded_MissesNothing) {
    const std::string waits = "delay = '1s'\nnext = 'good'\n";
    EXPECT_EQ(Said(start + "[steps.b]\nrun = ['endGuard']\n" + waits), "");
    // By its own choice.
    EXPECT_EQ(Said("[steps.a]\nrun = ['guard']\nwait = 'transition'\nnext = 'good'\non = { unsafe = 'b' }\n"
                   "[steps.b]\n" +
                   waits),
              "");
    // By a command on a thread, sooner or later.
    EXPECT_EQ(Said("[steps.a]\nrun = ['guard', 'endGuardLater']\nwait = 'end'\ntimeout = '9s'\nnext = 'b'\n"
                   "on = { unsafe = 'bad' }\n[steps.b]\n" +
                   waits),
              "");
}

TEST(FlowCheck, ChoiceOfAnotherMonitor_LeavesTheFirstRunning) {
    EXPECT_EQ(Said("[steps.a]\nrun = ['guard', 'second']\nwait = 'transition'\nnext = 'good'\n"
                   "on = { unsafe = 'c' }\n[steps.c]\nrun = ['endGuard']\nnext = 'b'\n"
                   "[steps.b]\ndelay = '1s'\nnext = 'bad'\n")
                  .find("the monitor 'second' may choose 'unsafe' in step 'b'"),
              0U);
}

TEST(FlowCheck, MonitorThatMayChooseInVain_IsNotReported) {
    for (const char* const step : {"next = 'good'\n", "delay = '1s'\nalways = 'good'\n",
                                   "mayFail = ['guard']\ndelay = '1s'\nnext = 'good'\n",
                                   "mayFail = ['SetTransition']\ndelay = '1s'\nnext = 'good'\n"})
        EXPECT_EQ(Said(start + "[steps.b]\n" + step), "") << step;
    EXPECT_EQ(Said(start + "[steps.b]\ndelay = '1s'\nnext = 'unsafe'\n[steps.unsafe]\nnext = 'good'\n"), "");
}

} // namespace

} // namespace vant::host
