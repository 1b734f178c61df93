#include "host/procedure/Flow.h"

#include "host/procedure/FlowCheck.h"
#include "host/procedure/ProcedureReader.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>

namespace vant::host {

namespace {

class FlowTest : public ::testing::Test {
protected:
    void Read(const std::string& steps) {
        m_procedure = ReadProcedure("name = 'n'\nstart = 'a'\n" + commands + steps, m_found);
        ASSERT_EQ(m_found.Print("f"), "");
        m_uses = CommandUses(m_procedure);
    }

    /// The ids of the commands that may still run when a step begins.
    std::string StillRunning(const std::string& step) const {
        const Flow flow(m_procedure, m_uses);
        const auto number =
            static_cast<std::size_t>(std::distance(m_procedure.steps.begin(), m_procedure.steps.find(step)));
        std::string ids;
        for (const std::size_t command : flow.StillRunning(number))
            ids += std::string(flow.CommandAt(command).id) + ' ';
        return ids;
    }

    const std::string commands =
        "[commands.count]\nclass = 'Timer'\n"
        "properties = { length = '5', dsBase = 'b', stopCommandID = 'sample' }\n"
        "[commands.sample]\nclass = 'ParameterSampler'\n"
        "properties = { parameterID = '1', period = '1', numSamples = '1', dsTarget = "
        "'m', completionTransition = 'chosen' }\n"
        "[commands.all]\nclass = 'CompositeCommand'\n"
        "properties = { commandIDList = 'count' }\n";
    Diagnostics m_found;
    Procedure m_procedure;
    std::vector<CommandUse> m_uses;
};

TEST_F(FlowTest, CommandThatRunsOn_MayStillRunInLaterSteps) {
    Read(
        "[steps.a]\nrun = ['all']\nnext = 'b'\n[steps.b]\nnext = 'chosen'\n[steps.chosen]\nend = 'passed'\n");
    EXPECT_EQ(StillRunning("a"), "");
    EXPECT_EQ(StillRunning("b"), "count sample ");
}

TEST_F(FlowTest, StepThatWaits_LeavesNothingRunningBehindNext) {
    Read("[steps.a]\nrun = ['count']\nwait = 'end'\nnext = 'b'\nfailed = 'c'\n"
         "[steps.b]\nend = 'passed'\n[steps.c]\nend = 'failed'\n[steps.chosen]\nend = 'failed'\n");
    EXPECT_EQ(StillRunning("b"), "");
    EXPECT_EQ(StillRunning("c"), "count sample ");
    EXPECT_EQ(StillRunning("chosen"), "count sample ");
}

TEST_F(FlowTest, StepThatACommandOnAThreadMayChoose_IsReached) {
    Read("[steps.a]\nrun = ['all']\nwait = 'end'\nnext = 'a'\n[steps.b]\nend = 'failed'\n"
         "[steps.chosen]\nend = 'passed'\n");
    EXPECT_EQ(Flow(m_procedure, m_uses).Reached(), (std::vector<bool>{true, false, true}));
}

TEST(FlowCheck, CommandsThatRunOneAnotherInVeryManyWays_AreNotFollowedForEver) {
    constexpr int count = 1500;
    std::string list;
    for (int i = 0; i < count; ++i)
        list += (i > 0 ? " c" : "c") + std::to_string(i);
    std::string text = "name = 'n'\nstart = 's0'\n";
    for (int i = 0; i < count; ++i) {
        const std::string number = std::to_string(i);
        text += "[commands.c" + number + "]\nclass = 'CompositeCommand'\nproperties = { commandIDList = '" +
                list + "' }\n[steps.s" + number + "]\nrun = ['c" + number + "']\nnext = 's" +
                std::to_string((i + 1) % count) + "'\n";
    }
    Diagnostics found;
    const Procedure procedure = ReadProcedure(text, found);
    const std::vector<CommandUse> uses = CommandUses(procedure);
    CheckFlow(procedure, uses, found);
    EXPECT_FALSE(found.HasErrors());
    EXPECT_FALSE(Flow(procedure, uses).IsWhole());
}

} // namespace

} // namespace vant::host
