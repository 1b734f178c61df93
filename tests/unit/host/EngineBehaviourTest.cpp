// What a simulated engine does over time, from the text of its file to what commands read.

#include "tests/unit/host/EngineOnClock.h"

#include <cmath>
#include <gtest/gtest.h>

namespace vant::host {

namespace {

class EngineBehaviourTest : public EngineOnClock {};

constexpr std::string_view throttled = R"(
[parameters."13190"]
value = 0
[parameters."110142"]
value = 0
[parameters."101000"]
value = 600.0
behaviour = { follows = ["13190", "110142"], gain = 25, offset = 600, lag = 2 }
)";

TEST_F(EngineBehaviourTest, Speed_FollowsTheThrottleWithItsLag) {
    Start(throttled);
    EXPECT_EQ(NumberAt(1000, "101000"), 600.0);
    ASSERT_EQ(WriteAt(1000, "13190", 40), S_OK);
    EXPECT_EQ(NumberAt(1000, "101000"), 600.0);
    EXPECT_NEAR(NumberAt(3000, "101000"), 1600 - 1000 * std::exp(-1), 1e-9);
    EXPECT_NEAR(NumberAt(5000, "101000"), 1600 - 1000 * std::exp(-2), 1e-9);
    ASSERT_EQ(WriteAt(5000, "13190", 0), S_OK);
    const double turned = 1600 - 1000 * std::exp(-2);
    EXPECT_NEAR(NumberAt(8000, "101000"), 600 + (turned - 600) * std::exp(-1.5), 1e-9);
    EXPECT_EQ(NumberAt(3600000, "101000"), 600.0);
}

TEST_F(EngineBehaviourTest, Speed_FollowsTheThrottleThatWasWrittenLast) {
    Start(throttled);
    ASSERT_EQ(WriteAt(0, "13190", 40), S_OK);
    ASSERT_EQ(WriteAt(100000, "110142", 20), S_OK);
    EXPECT_NEAR(NumberAt(200000, "101000"), 1100, 1e-9);
    ASSERT_EQ(WriteAt(200000, "13190", 10), S_OK);
    EXPECT_NEAR(NumberAt(300000, "101000"), 850, 1e-9);
}

TEST_F(EngineBehaviourTest, Times_CountFromTheCreationOfTheEngine) {
    Start("[parameters.a]\nvalue = 0.0\nbehaviour.ramp = { to = 10, over = 10 }\n", 123456);
    EXPECT_EQ(NumberAt(123456, "a"), 0.0);
    EXPECT_EQ(NumberAt(128456, "a"), 5.0);
}

TEST_F(EngineBehaviourTest, Load_ChangesTheInputAtItsTime) {
    Start(R"([parameters.speed]
value = 800.0
behaviour = { lag = 1, loads = [{ at = 10, until = 20, by = -100 }, { at = 15, by = -40 }] }
)");
    EXPECT_EQ(NumberAt(10000, "speed"), 800.0);
    EXPECT_NEAR(NumberAt(12000, "speed"), 700 + 100 * std::exp(-2), 1e-9);
    const double at15 = 700 + 100 * std::exp(-5);
    EXPECT_NEAR(NumberAt(16000, "speed"), 660 + (at15 - 660) * std::exp(-1), 1e-9);
    EXPECT_NEAR(NumberAt(90000, "speed"), 760, 1e-9);
}

TEST_F(EngineBehaviourTest, LoadWithoutInertia_ShowsAtOnce) {
    Start("[parameters.speed]\nvalue = 800\nbehaviour.loads = [{ at = 1.234, until = 2, by = -100 }]\n");
    ExpectNumbers("speed", {{1233, 800.0}, {1234, 700.0}, {1999, 700.0}, {2000, 800.0}});
}

TEST_F(EngineBehaviourTest, Valve_MovesToWhatIsWrittenWithItsRate) {
    Start("[parameters.\"110145\"]\nvalue = 50\nmin = 0\nmax = 100\nbehaviour.rate = 4\n");
    ASSERT_EQ(WriteAt(1000, "110145", 40), S_OK);
    EXPECT_EQ(ValueAt(1000, "110145"), Value(std::int64_t{50}));
    EXPECT_EQ(ValueAt(2000, "110145"), Value(std::int64_t{46}));
    EXPECT_EQ(ValueAt(3500, "110145"), Value(std::int64_t{40}));
    EXPECT_EQ(ValueAt(9000, "110145"), Value(std::int64_t{40}));
    EXPECT_EQ(WriteAt(9000, "110145", 101), E_BOUNDS);
    EXPECT_EQ(ValueAt(10000, "110145"), Value(std::int64_t{40}));
}

TEST_F(EngineBehaviourTest, Coolant_RisesTowardsItsEnd) {
    Start("[parameters.coolant]\nvalue = 18.0\nbehaviour = { towards = 88, lag = 150 }\n");
    EXPECT_EQ(NumberAt(0, "coolant"), 18.0);
    EXPECT_NEAR(NumberAt(150000, "coolant"), 88 - 70 * std::exp(-1), 1e-9);
    EXPECT_NEAR(NumberAt(600000, "coolant"), 88 - 70 * std::exp(-4), 1e-9);
}

TEST_F(EngineBehaviourTest, Ramp_IsALineBetweenItsEnds) {
    Start("[parameters.a]\nvalue = 1.5\nbehaviour.ramp = { from = 10, to = 20, at = 2, over = 4 }\n");
    ExpectNumbers("a", {{1999, 1.5}, {2000, 10.0}, {3000, 12.5}});
    EXPECT_DOUBLE_EQ(NumberAt(5999, "a"), 19.9975);
    EXPECT_EQ(NumberAt(6000, "a"), 20.0);
    EXPECT_EQ(NumberAt(600000, "a"), 20.0);
}

TEST_F(EngineBehaviourTest, Changes_ApplyFromTheirTimesOn) {
    Start(R"([parameters.fan]
value = "OFF"
behaviour.changes = [{ at = 1, to = "SLOW" }, { at = 2.5, to = "FAST" }]
[parameters.status]
value = 3
behaviour.changes = [{ at = 1, to = 8 }]
[parameters.ready]
value = false
behaviour.changes = [{ at = 1, to = true }]
)");
    EXPECT_EQ(TextAt(999, "fan"), L"OFF");
    EXPECT_EQ(TextAt(1000, "fan"), L"SLOW");
    EXPECT_EQ(TextAt(2499, "fan"), L"SLOW");
    EXPECT_EQ(TextAt(2500, "fan"), L"FAST");
    EXPECT_EQ(TextAt(60000, "fan"), L"FAST");
    Start("[parameters.status]\nvalue = 3\nbehaviour.changes = [{ at = 1, to = 8 }]\n");
    EXPECT_EQ(ValueAt(999, "status"), Value(std::int64_t{3}));
    EXPECT_EQ(ValueAt(1000, "status"), Value(std::int64_t{8}));
    Start("[parameters.ready]\nvalue = false\nbehaviour.changes = [{ at = 1, to = true }]\n");
    EXPECT_EQ(ValueAt(0, "ready"), Value(false));
    EXPECT_EQ(ValueAt(1000, "ready"), Value(true));
}

TEST_F(EngineBehaviourTest, ChangeWithLag_IsFollowedFromItsTimeOn) {
    Start("[parameters.a]\nvalue = 0.0\nbehaviour = { lag = 1, changes = [{ at = 5, to = 10 }] }\n");
    EXPECT_EQ(NumberAt(5000, "a"), 0.0);
    EXPECT_NEAR(NumberAt(6000, "a"), 10 - 10 * std::exp(-1), 1e-12);
}

TEST_F(EngineBehaviourTest, Sequence_ReturnsOneValueForEachReadAndRepeatsTheLast) {
    Start("[parameters.a]\nvalue = 0\nbehaviour.sequence = [1300, 1350.5, 1450]\n"
          "[parameters.b]\nvalue = ''\nbehaviour.sequence = ['x', 'y']\n");
    EXPECT_EQ(ValueAt(0, "a"), Value(std::int64_t{1300}));
    EXPECT_EQ(TextAt(0, "a"), L"1350");
    EXPECT_EQ(ValueAt(0, "b"), Value("x"));
    EXPECT_EQ(ValueAt(0, "a"), Value(std::int64_t{1450}));
    EXPECT_EQ(ValueAt(0, "a"), Value(std::int64_t{1450}));
    EXPECT_EQ(ValueAt(0, "b"), Value("y"));
    EXPECT_EQ(ValueAt(0, "b"), Value("y"));
}

TEST_F(EngineBehaviourTest, SequenceInTime_ChangesWhetherReadOrNot) {
    Start("[parameters.a]\nvalue = 0\nbehaviour = { sequence = [1, 2, 3], every = 0.5 }\n");
    ExpectNumbers("a", {{0, 1.0}, {499, 1.0}, {499, 1.0}, {1000, 3.0}, {9000, 3.0}});
}

TEST_F(EngineBehaviourTest, Outage_FailsEveryReadWhileItLasts) {
    Start("[parameters.a]\nvalue = 1\nfails = { from = 2, until = 3 }\n"
          "[parameters.b]\nvalue = 1\nfails = { from = 2 }\n");
    EXPECT_EQ(CodeAt(1999, "a"), S_OK);
    EXPECT_EQ(CodeAt(1999, "b"), S_OK);
    EXPECT_EQ(CodeAt(2000, "a"), HRESULT_FROM_WIN32(ERROR_READ_FAULT));
    EXPECT_EQ(CodeAt(2999, "a"), HRESULT_FROM_WIN32(ERROR_READ_FAULT));
    CComBSTR text;
    EXPECT_EQ(ReadText(*engine, "a", text), HRESULT_FROM_WIN32(ERROR_READ_FAULT));
    EXPECT_EQ(CodeAt(3000, "a"), S_OK);
    EXPECT_EQ(CodeAt(3600000, "b"), HRESULT_FROM_WIN32(ERROR_READ_FAULT));
}

TEST_F(EngineBehaviourTest, FailingRead_IsTheOneWithThatNumber) {
    Start("[parameters.a]\nvalue = 1\nfails.read = 3\nbehaviour.sequence = [1, 2, 3, 4]\n");
    EXPECT_EQ(NumberAt(0, "a"), 1.0);
    EXPECT_EQ(TextAt(0, "a"), L"2");
    EXPECT_EQ(CodeAt(0, "a"), HRESULT_FROM_WIN32(ERROR_READ_FAULT));
    EXPECT_EQ(NumberAt(0, "a"), 4.0) << "the value of the failed read is gone";
}

TEST_F(EngineBehaviourTest, ReadsThatFail_CountToo) {
    Start("[parameters.a]\nvalue = 0\nfails = { from = 0, until = 1, read = 3 }\n"
          "behaviour.sequence = [1, 2, 3, 4]\n");
    EXPECT_EQ(CodeAt(0, "a"), HRESULT_FROM_WIN32(ERROR_READ_FAULT));
    EXPECT_EQ(CodeAt(500, "a"), HRESULT_FROM_WIN32(ERROR_READ_FAULT));
    EXPECT_EQ(CodeAt(1000, "a"), HRESULT_FROM_WIN32(ERROR_READ_FAULT));
    EXPECT_EQ(NumberAt(1000, "a"), 4.0);
}

TEST_F(EngineBehaviourTest, Noise_StaysWithinItsAmplitudeAndMoves) {
    Start("seed = 3\n[parameters.a]\nvalue = 800.0\nbehaviour.noise = 8\n");
    double least = 900;
    double greatest = 700;
    for (std::int64_t time = 0; time < 100000; time += 10) {
        const double read = NumberAt(time, "a");
        least = std::min(least, read);
        greatest = std::max(greatest, read);
    }
    EXPECT_GE(least, 792.0);
    EXPECT_LT(greatest, 808.0);
    EXPECT_LT(least, 792.1);
    EXPECT_GT(greatest, 807.9);
}

TEST_F(EngineBehaviourTest, NoisyReading_StaysWithinTheLimits) {
    Start("[parameters.a]\nvalue = 100\nmax = 100\nmin = 99\nbehaviour.noise = 50\n");
    for (std::int64_t time = 0; time < 10000; time += 10) {
        const double read = NumberAt(time, "a");
        ASSERT_TRUE(read == 99 || read == 100) << read;
    }
}

TEST_F(EngineBehaviourTest, FollowerOfANoisyParameter_FollowsTheValueWithoutNoise) {
    Start("[parameters.a]\nvalue = 100.0\nbehaviour.noise = 50\n"
          "[parameters.b]\nvalue = 0.0\nbehaviour = { follows = 'a', gain = 2, offset = 1 }\n");
    EXPECT_EQ(NumberAt(0, "b"), 201.0);
    EXPECT_EQ(NumberAt(12340, "b"), 201.0);
}

TEST_F(EngineBehaviourTest, InputBeyondTheLimits_CountsAsTheLimit) {
    Start(R"([parameters.throttle]
value = 0
[parameters.speed]
value = 600.0
max = 3000
behaviour = { follows = "throttle", gain = 100, offset = 600, lag = 1 }
)");
    ASSERT_EQ(WriteAt(0, "throttle", 1000), S_OK);
    EXPECT_NEAR(NumberAt(1000, "speed"), 3000 - 2400 * std::exp(-1), 1e-9);
    EXPECT_EQ(NumberAt(3600000, "speed"), 3000.0);
}

TEST_F(EngineBehaviourTest, FollowerOfAFollower_ComesAfterIt) {
    Start(R"([parameters.throttle]
value = 0.0
[parameters.speed]
value = 0.0
behaviour = { follows = "throttle", lag = 2 }
[parameters.double]
value = 0.0
behaviour = { follows = "speed", gain = 2 }
[parameters.pressure]
value = 0.0
behaviour = { follows = "double", lag = 1 }
)");
    ASSERT_EQ(WriteAt(0, "throttle", 1), S_OK);
    EXPECT_EQ(NumberAt(1500, "double"), 2 * NumberAt(1500, "speed"));
    // The closed form of one lag after another; the input that moves is held for 50 ms at a time.
    for (const int time : {2000, 3000, 7000}) {
        const double t = time / 1000.0;
        const double exact = 2 * (1 - (2 * std::exp(-t / 2) - std::exp(-t)));
        EXPECT_NEAR(NumberAt(time, "pressure"), exact, 0.02) << time;
    }
    EXPECT_NEAR(NumberAt(600000, "pressure"), 2, 1e-9);
}

TEST_F(EngineBehaviourTest, WholeNumbers_AreRoundedHalfToEven) {
    Start("[parameters.a]\nvalue = 0\nbehaviour.sequence = [0.5, 1.5, 2.5, -0.5, -1.5, 2.4999, 3e9, -3e9]\n");
    for (const std::int64_t expected : {0, 2, 2, 0, -2, 2, 2147483647, -2147483647 - 1})
        EXPECT_EQ(ValueAt(0, "a"), Value(expected));
}

TEST_F(EngineBehaviourTest, Decimals_LimitValueAndText) {
    Start(
        "[parameters.a]\nvalue = 0.0\nbehaviour = { decimals = 2, sequence = [1.23456, 0.125, 5, 1e300] }\n");
    EXPECT_EQ(ValueAt(0, "a"), Value(1.23));
    EXPECT_EQ(ValueAt(0, "a"), Value(0.12));
    EXPECT_EQ(TextAt(0, "a"), L"5");
    EXPECT_EQ(ValueAt(0, "a"), Value(1e300));
}

TEST_F(EngineBehaviourTest, Text_IsThatOfTheCurrentValue) {
    Start("[parameters.a]\nvalue = 0.0\nbehaviour = { ramp = { to = 1, over = 3 }, decimals = 3 }\n"
          "[parameters.b]\nvalue = 10\nbehaviour.ramp = { to = 20, over = 10 }\n");
    EXPECT_EQ(TextAt(1000, "a"), L"0.333");
    EXPECT_EQ(TextAt(4400, "b"), L"14");
}

TEST_F(EngineBehaviourTest, ParameterWithASource_RefusesWrites) {
    Start(R"([parameters.other]
value = 1
[parameters.follows]
value = 1
behaviour.follows = "other"
[parameters.towards]
value = 1
behaviour = { towards = 5, rate = 1 }
[parameters.ramp]
value = 1
behaviour.ramp = { to = 2, over = 1 }
[parameters.changes]
value = 1
behaviour.changes = [{ at = 1, to = 2 }]
[parameters.sequence]
value = 1
behaviour.sequence = [1]
)");
    for (const char* const id : {"follows", "towards", "ramp", "changes", "sequence"})
        EXPECT_EQ(WriteAt(0, id, 7), E_ACCESSDENIED) << id;
}

TEST_F(EngineBehaviourTest, ParameterWithoutASource_TakesWritesAtOnceUnlessItHasInertia) {
    Start("[parameters.a]\nvalue = 100.0\nbehaviour.loads = [{ at = 1, by = 3 }]\n");
    ASSERT_EQ(WriteAt(1005, "a", 50), S_OK);
    EXPECT_EQ(NumberAt(1005, "a"), 53.0);
}

TEST_F(EngineBehaviourTest, WriteWithinAStep_CountsFromTheStepsBeginning) {
    Start("[parameters.a]\nvalue = 0.0\nbehaviour.rate = 1\n");
    ASSERT_EQ(WriteAt(1009, "a", 10), S_OK);
    ExpectNumbers("a", {{1009, 0.0}, {1010, 0.01}, {2000, 1.0}});
}

TEST_F(EngineBehaviourTest, ValueThatIsNotANumber_CountsAsZero) {
    Start("[parameters.a]\nvalue = 5.0\n"
          "[parameters.b]\nvalue = 5.0\nbehaviour = { follows = 'a', lag = 1 }\n");
    ASSERT_EQ(WriteAt(0, "a", std::nan("")), S_OK);
    EXPECT_NEAR(NumberAt(100000, "b"), 0, 1e-9);
    ASSERT_EQ(WriteAt(100000, "a", -HUGE_VAL), S_OK);
    EXPECT_EQ(NumberAt(2000000, "b"), -1e300);
    ASSERT_EQ(WriteAt(2000000, "a", 3), S_OK);
    EXPECT_EQ(NumberAt(4000000, "b"), 3.0);
}

TEST_F(EngineBehaviourTest, Sum_AddsItsInputs) {
    Start(R"([parameters."13190"]
value = 10
[parameters."13191"]
value = 2.5
behaviour.noise = 1
[parameters."101000"]
value = 0.0
behaviour.sum = [{ of = "13190", gain = 25 }, { of = "13191", gain = -3, offset = 5 }, { of = "13190" }]
)");
    EXPECT_EQ(NumberAt(0, "101000"), 250 - 7.5 + 5 + 10);
    ASSERT_EQ(WriteAt(1003, "13190", 20), S_OK);
    EXPECT_EQ(NumberAt(1003, "101000"), 500 - 7.5 + 5 + 20);
    EXPECT_EQ(WriteAt(1003, "101000", 1), E_ACCESSDENIED);
}

TEST_F(EngineBehaviourTest, SumWithLag_SamplesWhatMovesAndSettles) {
    Start(R"([parameters.a]
value = 0.0
behaviour.ramp = { to = 10, over = 10 }
[parameters.b]
value = 0.0
behaviour = { towards = 4, lag = 1 }
[parameters.total]
value = 0.0
max = 12
behaviour = { sum = [{ of = "a" }, { of = "b", gain = 0.5 }], lag = 0.5, loads = [{ at = 60, by = -7 }] }
)");
    // A ramp of 1 per second leaves a lag of 0.5 s by 0.5; the input that moves is held for 50 ms at a time.
    EXPECT_NEAR(NumberAt(9000, "total"), 9 - 0.5 + 2, 0.04);
    EXPECT_EQ(NumberAt(59999, "total"), 12.0);
    EXPECT_NEAR(NumberAt(61000, "total"), 5 + 7 * std::exp(-2), 1e-9);
    EXPECT_EQ(NumberAt(600000, "total"), 5.0);
}

TEST_F(EngineBehaviourTest, SumBeyondEveryNumber_IsLimited) {
    Start(R"([parameters.a]
value = 1e300
[parameters.sum]
value = 0.0
behaviour.sum = [{ of = "a", gain = 1e300 }]
[parameters.difference]
value = 0.0
behaviour.sum = [{ of = "a", gain = 1e300 }, { of = "a", gain = -1e300 }]
)");
    EXPECT_EQ(NumberAt(0, "sum"), 1e300);
    EXPECT_EQ(NumberAt(0, "difference"), 0.0);
}

} // namespace

} // namespace vant::host
