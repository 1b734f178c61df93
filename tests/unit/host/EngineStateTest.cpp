// What the parameters of a simulated engine do depending on where their inputs have been: delay, threshold
// and stick.

#include "host/engine/model/DelayedNumber.h"
#include "host/engine/model/Hysteresis.h"
#include "tests/unit/host/EngineOnClock.h"

#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vant::host {

namespace {

TEST(DelayedNumber, Number_ArrivesSoManyStepsLater) {
    DelayedNumber delayed(1, 40);
    delayed.Take(2, 10);
    delayed.Take(3, 20);
    EXPECT_EQ(delayed.Number(), 1.0);
    EXPECT_EQ(delayed.NextArrival(), 50);
    delayed.Take(3, 50);
    EXPECT_EQ(delayed.Number(), 2.0);
    EXPECT_EQ(delayed.NextArrival(), 60);
    delayed.Take(3, 60);
    EXPECT_EQ(delayed.Number(), 3.0);
    EXPECT_EQ(delayed.NextArrival(), std::numeric_limits<std::int64_t>::max());
}

TEST(DelayedNumber, LastNumberOfAStep_IsTheOneThatStays) {
    DelayedNumber delayed(1, 40);
    delayed.Take(2, 10);
    delayed.Take(3, 10);
    delayed.Take(3, 50);
    EXPECT_EQ(delayed.Number(), 3.0);
}

TEST(Switch, On_IsReachedAtTheLimitsAndKeptBetweenThem) {
    Switch rising(3000, 2800);
    const std::vector<std::pair<double, bool>> risen = {{2999, false}, {3000, true},  {2801, true},
                                                        {2800, false}, {2999, false}, {5000, true}};
    for (const auto& [number, isOn] : risen) {
        rising.Take(number);
        EXPECT_EQ(rising.IsOn(), isOn) << number;
    }
    Switch falling(10, 20);
    const std::vector<std::pair<double, bool>> fallen = {{11, false}, {10, true},  {19, true},
                                                         {20, false}, {11, false}, {-5, true}};
    for (const auto& [number, isOn] : fallen) {
        falling.Take(number);
        EXPECT_EQ(falling.IsOn(), isOn) << number;
    }
}

TEST(StickingNumber, Number_MovesFullyOnceTheInputIsFurtherAway) {
    StickingNumber sticking(50, 5);
    const std::vector<std::pair<double, double>> moves = {{55, 50},     {55.5, 55.5}, {60.5, 55.5},
                                                          {50.5, 55.5}, {50.4, 50.4}, {-7, -7}};
    for (const auto& [input, number] : moves) {
        sticking.Take(input);
        EXPECT_EQ(sticking.Number(), number) << input;
    }
}

class EngineStateTest : public EngineOnClock {};

TEST_F(EngineStateTest, Delay_LetsAWriteArriveLater) {
    Start("[parameters.a]\nvalue = 5\nbehaviour.delay = 0.4\n");
    ASSERT_EQ(WriteAt(0, "a", 7), S_OK);
    EXPECT_EQ(NumberAt(399, "a"), 5.0);
    EXPECT_EQ(NumberAt(400, "a"), 7.0);
    ASSERT_EQ(WriteAt(1005, "a", 8), S_OK);
    ASSERT_EQ(WriteAt(1100, "a", 9), S_OK);
    EXPECT_EQ(NumberAt(1399, "a"), 7.0);
    EXPECT_EQ(NumberAt(1400, "a"), 8.0) << "a write counts from the beginning of its step";
    EXPECT_EQ(NumberAt(1499, "a"), 8.0);
    EXPECT_EQ(NumberAt(1500, "a"), 9.0);
}

TEST_F(EngineStateTest, DelayThatIsNoWholeNumberOfSteps_EndsWithTheStep) {
    Start("[parameters.a]\nvalue = 5\nbehaviour.delay = '401ms'\n");
    ASSERT_EQ(WriteAt(0, "a", 7), S_OK);
    EXPECT_EQ(NumberAt(409, "a"), 5.0);
    EXPECT_EQ(NumberAt(410, "a"), 7.0);
}

TEST_F(EngineStateTest, DelayWithLag_BeginsToMoveOnArrival) {
    Start(R"([parameters.throttle]
value = 0
[parameters.speed]
value = 600.0
behaviour = { follows = "throttle", gain = 25, offset = 600, delay = 0.43, lag = 2 }
)");
    ASSERT_EQ(WriteAt(1000, "throttle", 40), S_OK);
    EXPECT_EQ(NumberAt(1430, "speed"), 600.0);
    EXPECT_NEAR(NumberAt(3430, "speed"), 1600 - 1000 * std::exp(-1), 1e-9);
    EXPECT_EQ(NumberAt(3600000, "speed"), 1600.0);
}

TEST_F(EngineStateTest, DelayBeforeItHasPassed_IsTheInputOfTheBeginning) {
    Start(R"([parameters.a]
value = 3.0
[parameters.b]
value = 0.0
behaviour = { follows = "a", gain = 2, delay = 1 }
[parameters.c]
value = 0.0
behaviour = { follows = "b", delay = 1 }
)");
    ASSERT_EQ(WriteAt(0, "a", 4), S_OK);
    EXPECT_EQ(NumberAt(0, "b"), 6.0);
    EXPECT_EQ(NumberAt(999, "c"), 6.0);
    EXPECT_EQ(NumberAt(1000, "b"), 8.0);
    EXPECT_EQ(NumberAt(1999, "c"), 6.0);
    EXPECT_EQ(NumberAt(2000, "c"), 8.0);
}

TEST_F(EngineStateTest, DelayedRamp_IsHeldFor50Milliseconds) {
    Start("[parameters.a]\nvalue = 0.0\nbehaviour = { ramp = { to = 100, over = 10 }, delay = 1 }\n");
    ExpectNumbers("a", {{1049, 0.0}, {1050, 0.5}, {1099, 0.5}, {6000, 50.0}, {10999, 99.5}, {11000, 100.0}});
}

TEST_F(EngineStateTest, Loads_AreNotDelayed) {
    Start("[parameters.a]\nvalue = 5\nbehaviour = { delay = 1, loads = [{ at = 0.5, by = 2 }] }\n");
    ASSERT_EQ(WriteAt(0, "a", 7), S_OK);
    ExpectNumbers("a", {{499, 5.0}, {500, 7.0}, {1000, 9.0}});
}

TEST_F(EngineStateTest, DelayedNotANumber_ArrivesAsZeroOnce) {
    Start("[parameters.a]\nvalue = 5.0\nbehaviour.delay = 1\n");
    ASSERT_EQ(WriteAt(0, "a", std::nan("")), S_OK);
    EXPECT_EQ(NumberAt(1000, "a"), 0.0);
    EXPECT_EQ(NumberAt(300'000'000'000, "a"), 0.0);
}

TEST_F(EngineStateTest, Threshold_SwitchesAtItsLimits) {
    Start(R"([parameters.speed]
value = 2900
[parameters.limiter]
value = 0
behaviour.threshold = { of = "speed", on = 3000, off = 2800, high = 10, low = -1 }
[parameters.stalled]
value = false
behaviour.threshold = { of = "speed", on = 300, off = 500, high = true, low = false }
)");
    EXPECT_EQ(NumberAt(0, "limiter"), -1.0);
    EXPECT_EQ(ValueAt(0, "stalled"), Value(false));
    ASSERT_EQ(WriteAt(10, "speed", 3000), S_OK);
    EXPECT_EQ(NumberAt(10, "limiter"), 10.0);
    ASSERT_EQ(WriteAt(20, "speed", 2801), S_OK);
    EXPECT_EQ(NumberAt(20, "limiter"), 10.0);
    ASSERT_EQ(WriteAt(30, "speed", 300), S_OK);
    EXPECT_EQ(NumberAt(30, "limiter"), -1.0);
    EXPECT_EQ(ValueAt(30, "stalled"), Value(true));
    ASSERT_EQ(WriteAt(40, "speed", 499), S_OK);
    EXPECT_EQ(ValueAt(40, "stalled"), Value(true));
    ASSERT_EQ(WriteAt(50, "speed", 500), S_OK);
    EXPECT_EQ(ValueAt(50, "stalled"), Value(false));
    EXPECT_EQ(WriteAt(50, "limiter", 0), E_ACCESSDENIED);
}

TEST_F(EngineStateTest, ThresholdThatIsReachedAtTheBeginning_IsHigh) {
    Start(R"([parameters.x]
value = 5.0
[parameters.a]
value = 0
behaviour.threshold = { of = "x", on = 5, off = 4, high = 1, low = 0 }
[parameters.b]
value = 0.0
behaviour = { follows = "a", lag = 1 }
)");
    EXPECT_EQ(NumberAt(0, "a"), 1.0);
    EXPECT_NEAR(NumberAt(1000, "b"), 1 - std::exp(-1), 1e-12);
}

TEST_F(EngineStateTest, ThresholdOfWhatMoves_IsSampledEvery50MillisecondsWhetherReadOrNot) {
    // The ramp reaches 10 at 1.01 s and returns below 9 before anyone looks.
    const char* const text = R"([parameters.x]
value = 0.0
behaviour = { ramp = { to = 100, at = 0.91, over = 1 }, loads = [{ at = 1.5, by = -1000 }] }
[parameters.a]
value = "cold"
behaviour.threshold = { of = "x", on = 10, off = -2000, high = "hot", low = "cold" }
[parameters.b]
value = 0.0
behaviour = { follows = "x", lag = 1 }
)";
    Start(text);
    EXPECT_EQ(ValueAt(1049, "a"), Value("cold"));
    EXPECT_EQ(ValueAt(1050, "a"), Value("hot"));
    Start(text);
    EXPECT_EQ(ValueAt(60000, "a"), Value("hot"));
}

TEST_F(EngineStateTest, Stick_HoldsTheParameterUntilItsInputIsFurtherAway) {
    Start(R"([parameters.valve]
value = 50.0
behaviour.stick = 5
[parameters.geared]
value = 50.0
behaviour = { stick = 5, rate = 4 }
)");
    for (const char* const id : {"valve", "geared"}) {
        ASSERT_EQ(WriteAt(now, id, 45), S_OK);
        EXPECT_EQ(NumberAt(now + 10000, id), 50.0);
        ASSERT_EQ(WriteAt(now, id, 44), S_OK);
        EXPECT_EQ(NumberAt(now + 1000, id), std::string(id) == "valve" ? 44.0 : 46.0);
        EXPECT_EQ(NumberAt(now + 10000, id), 44.0);
        ASSERT_EQ(WriteAt(now, id, 49), S_OK);
        EXPECT_EQ(NumberAt(now + 10000, id), 44.0);
    }
}

TEST_F(EngineStateTest, StickOnTheWay_IsMeasuredFromWhereTheParameterGoes) {
    Start("[parameters.a]\nvalue = 50.0\nbehaviour = { stick = 5, rate = 4 }\n");
    ASSERT_EQ(WriteAt(0, "a", 70), S_OK);
    ASSERT_EQ(WriteAt(1000, "a", 66), S_OK);
    EXPECT_EQ(NumberAt(60000, "a"), 70.0);
}

TEST_F(EngineStateTest, StickAtTheBeginning_StartsFromValueOnlyWithLagOrRate) {
    Start(R"([parameters.x]
value = 53.0
[parameters.free]
value = 50.0
behaviour = { follows = "x", stick = 5 }
[parameters.geared]
value = 50.0
behaviour = { follows = "x", stick = 5, rate = 4 }
)");
    EXPECT_EQ(NumberAt(0, "free"), 53.0);
    EXPECT_EQ(NumberAt(60000, "geared"), 50.0);
}

TEST_F(EngineStateTest, StickOnARamp_MakesStairs) {
    Start("[parameters.a]\nvalue = 0.0\nbehaviour = { ramp = { to = 100, over = 10 }, stick = 5 }\n");
    ExpectNumbers("a", {{549, 0.0}, {550, 5.5}, {1099, 5.5}, {1100, 11.0}});
}

} // namespace

} // namespace vant::host
