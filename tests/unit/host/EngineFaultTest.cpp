// Records of fault arrays that come and go, from the text of the engine's file to the list at a time.

#include "tests/unit/host/EngineOnClock.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace vant::host {

namespace {

using Records = std::vector<std::size_t>;

class EngineFaultTest : public EngineOnClock {
protected:
    Records FaultsAt(std::int64_t time) {
        now = time;
        return engine->FaultRecords("f");
    }
};

TEST_F(EngineFaultTest, RecordsWithoutOtherKeys_AreAlwaysPresent) {
    Start("faults.f = [{ fields = [] }, { fields = [] }]\nfaults.none = []\n");
    EXPECT_EQ(FaultsAt(0), (Records{0, 1}));
    EXPECT_EQ(FaultsAt(3600000), (Records{0, 1}));
    EXPECT_EQ(engine->FaultRecords("none"), Records{});
    EXPECT_EQ(engine->FaultRecords("unknown"), Records{});
}

TEST_F(EngineFaultTest, Period_IsWhenTheRecordIsPresent) {
    Start("faults.f = [{ fields = [], from = 1, until = '2s' }, { fields = [], until = 1.5 }, "
          "{ fields = [], from = 1.995 }]\n");
    EXPECT_EQ(FaultsAt(999), (Records{1}));
    EXPECT_EQ(FaultsAt(1000), (Records{0, 1}));
    EXPECT_EQ(FaultsAt(1500), (Records{0}));
    EXPECT_EQ(FaultsAt(1999), (Records{0}));
    EXPECT_EQ(FaultsAt(2000), (Records{2}));
}

// A record for overspeed, which clearing removes.
constexpr std::string_view overspeed = R"(
[parameters.speed]
value = 800
[parameters.clear]
value = 0
[[faults.f]]
fields = []
when = { parameter = "speed", above = 3000, for = "2s" }
clearedBy = { parameter = "clear", is = 1 }
)";

TEST_F(EngineFaultTest, Condition_SetsTheRecordOnceItHasHeldLongEnough) {
    Start(overspeed);
    EXPECT_EQ(FaultsAt(0), Records{});
    ASSERT_EQ(WriteAt(1000, "speed", 3001), S_OK);
    EXPECT_EQ(FaultsAt(2999), Records{});
    EXPECT_EQ(FaultsAt(3000), Records{0});
    ASSERT_EQ(WriteAt(3500, "speed", 800), S_OK);
    EXPECT_EQ(FaultsAt(3600000), Records{0}) << "it is latched";
}

TEST_F(EngineFaultTest, ConditionThatIsInterrupted_CountsAnew) {
    Start(overspeed);
    ASSERT_EQ(WriteAt(1000, "speed", 3001), S_OK);
    ASSERT_EQ(WriteAt(2990, "speed", 3000), S_OK);
    ASSERT_EQ(WriteAt(3000, "speed", 3001), S_OK);
    EXPECT_EQ(FaultsAt(4999), Records{});
    EXPECT_EQ(FaultsAt(5000), Records{0});
}

TEST_F(EngineFaultTest, ConditionThatHeldJustLongEnough_SetsTheRecordThoughNobodyLooks) {
    Start(overspeed);
    ASSERT_EQ(WriteAt(1000, "speed", 3001), S_OK);
    ASSERT_EQ(WriteAt(3000, "speed", 800), S_OK);
    EXPECT_EQ(FaultsAt(3000), Records{0});
}

TEST_F(EngineFaultTest, Clearing_RemovesTheRecordWhichSetsItselfAgain) {
    Start(overspeed);
    ASSERT_EQ(WriteAt(0, "speed", 3001), S_OK);
    EXPECT_EQ(FaultsAt(5000), Records{0});
    ASSERT_EQ(WriteAt(5000, "clear", 2), S_OK);
    EXPECT_EQ(FaultsAt(5000), Records{0}) << "another value";
    ASSERT_EQ(WriteAt(6005, "clear", 1), S_OK);
    EXPECT_EQ(FaultsAt(6005), Records{});
    EXPECT_EQ(FaultsAt(7999), Records{});
    EXPECT_EQ(FaultsAt(8000), Records{0}) << "the condition has held all the time";
    ASSERT_EQ(WriteAt(9000, "speed", 800), S_OK);
    ASSERT_EQ(WriteAt(9000, "clear", 1), S_OK);
    EXPECT_EQ(FaultsAt(60000), Records{});
    ASSERT_EQ(WriteAt(60000, "speed", 4000), S_OK);
    EXPECT_EQ(FaultsAt(62000), Records{0});
}

TEST_F(EngineFaultTest, RefusedWrite_ClearsNothing) {
    Start("[parameters.clear]\nvalue = 0\nmax = 1\n"
          "[[faults.f]]\nfields = []\nclearedBy = { parameter = 'clear', is = 1 }\n");
    EXPECT_EQ(WriteAt(0, "clear", 2), E_BOUNDS);
    EXPECT_EQ(FaultsAt(0), Records{0});
}

TEST_F(EngineFaultTest, RecordWithoutCondition_IsClearedForGood) {
    Start("[parameters.clear]\nvalue = 0.0\n"
          "[[faults.f]]\nfields = []\nfrom = 1\nclearedBy = { parameter = 'clear', is = 1 }\n"
          "[[faults.f]]\nfields = []\nclearedBy = { parameter = 'clear', is = 1 }\n");
    ASSERT_EQ(WriteAt(500, "clear", 1), S_OK);
    EXPECT_EQ(FaultsAt(500), Records{});
    EXPECT_EQ(FaultsAt(1000), Records{0}) << "it was not there to be cleared";
    ASSERT_EQ(WriteAt(2000, "clear", 1), S_OK);
    ASSERT_EQ(WriteAt(3000, "clear", 1), S_OK);
    EXPECT_EQ(FaultsAt(60000), Records{});
}

TEST_F(EngineFaultTest, ConditionWithoutDuration_SetsTheRecordAtOnceAndKeepsItWhenCleared) {
    Start("[parameters.fan]\nvalue = 'OFF'\nbehaviour.changes = [{ at = 1, to = 'ON' }, { at = 2, to = 'OFF' "
          "}]\n"
          "[parameters.clear]\nvalue = true\n"
          "[[faults.f]]\nfields = []\nwhen = { parameter = 'fan', is = 'ON' }\n"
          "clearedBy = { parameter = 'clear', is = false }\n");
    EXPECT_EQ(FaultsAt(999), Records{});
    EXPECT_EQ(FaultsAt(1000), Records{0});
    ASSERT_EQ(WriteAt(1500, "clear", 0), S_OK);
    EXPECT_EQ(FaultsAt(1500), Records{0});
    ASSERT_EQ(WriteAt(2000, "clear", 0), S_OK);
    EXPECT_EQ(FaultsAt(2000), Records{});
}

TEST_F(EngineFaultTest, RecordThatIsNotLatched_IsPresentWhileItsConditionHolds) {
    Start("[parameters.speed]\nvalue = 0\n"
          "[[faults.f]]\nfields = []\nwhen = { parameter = 'speed', atLeast = 5, for = 1, latched = false }\n"
          "[[faults.f]]\nfields = []\nwhen = { parameter = 'speed', below = 5, latched = false }\n");
    EXPECT_EQ(FaultsAt(0), Records{1});
    ASSERT_EQ(WriteAt(1000, "speed", 5), S_OK);
    EXPECT_EQ(FaultsAt(1000), Records{});
    EXPECT_EQ(FaultsAt(2000), Records{0});
    ASSERT_EQ(WriteAt(3000, "speed", 4), S_OK);
    EXPECT_EQ(FaultsAt(3000), Records{1});
}

TEST_F(EngineFaultTest, ConditionAndPeriod_BothMustHold) {
    Start("[parameters.speed]\nvalue = 10\n"
          "[[faults.f]]\nfields = []\nfrom = 1\nuntil = 5\nwhen = { parameter = 'speed', atMost = 10, for = "
          "2 }\n");
    EXPECT_EQ(FaultsAt(2999), Records{});
    EXPECT_EQ(FaultsAt(3000), Records{0});
    EXPECT_EQ(FaultsAt(4999), Records{0});
    EXPECT_EQ(FaultsAt(5000), Records{});
}

TEST_F(EngineFaultTest, Condition_ComparesTheReadingWithoutItsNoise) {
    Start(R"(
[parameters.noisy]
value = 100.0
behaviour.noise = 50
[parameters.rounded]
value = 0
behaviour = { towards = 10, lag = 1 }
[[faults.f]]
fields = []
when = { parameter = "noisy", above = 100 }
[[faults.f]]
fields = []
when = { parameter = "rounded", is = 10 }
)");
    // The rounded reading is 10 from 9.5 on, after ln 20 = 2.996 s.
    EXPECT_EQ(FaultsAt(2999), Records{});
    EXPECT_EQ(FaultsAt(3000), Records{1});
}

TEST_F(EngineFaultTest, ConditionOfWhatMoves_IsLookedAtEvery50MillisecondsWhetherReadOrNot) {
    // The ramp passes 50 at 1.01 s and falls again before anyone looks.
    const char* const text = R"([parameters.x]
value = 0.0
behaviour = { ramp = { to = 100, at = 0.51, over = 1 }, loads = [{ at = 1.3, by = -1000 }] }
[[faults.f]]
fields = []
when = { parameter = "x", atLeast = 50, for = 0.2 }
)";
    Start(text);
    EXPECT_EQ(FaultsAt(1249), Records{});
    EXPECT_EQ(FaultsAt(1250), Records{0});
    Start(text);
    EXPECT_EQ(FaultsAt(60000), Records{0});
    Start(text);
    for (std::int64_t time = 0; time < 1250; time += 7)
        ASSERT_EQ(FaultsAt(time), Records{}) << time;
    EXPECT_EQ(FaultsAt(1250), Records{0});
}

TEST_F(EngineFaultTest, FaultThatWatches_DoesNotChangeReadings) {
    const std::string moving = "seed = 3\n[parameters.a]\nvalue = 0.0\n"
                               "behaviour = { towards = 9, lag = 2, noise = 1 }\n"
                               "[parameters.b]\nvalue = 0.0\nbehaviour = { follows = 'a', lag = 1 }\n";
    Start(moving);
    const double alone = NumberAt(7777, "b");
    Start(moving + "[[faults.f]]\nfields = []\nwhen = { parameter = 'b', above = 5 }\n");
    EXPECT_EQ(NumberAt(7777, "b"), alone);
    EXPECT_EQ(FaultsAt(7777), Records{0});
}

TEST_F(EngineFaultTest, ManyRecords_AreFoundInTime) {
    std::string toml = "[parameters]\n";
    for (int i = 0; i < 2000; ++i)
        toml += fmt::format("p{} = {{ value = 0.0, behaviour = {{ towards = 1, lag = 1 }} }}\n", i);
    for (int i = 0; i < 2000; ++i)
        toml += fmt::format("[[faults.f]]\nfields = []\nwhen = {{ parameter = 'p{}', above = 0.5 }}\n", i);
    Start(toml);
    EXPECT_EQ(FaultsAt(0).size(), 0U);
    EXPECT_EQ(FaultsAt(5000).size(), 2000U);
}

} // namespace

} // namespace vant::host
