// What a simulated engine does over time, from the text of its file to what commands read.

#include "tests/unit/host/EngineOnClock.h"

#include <bit>
#include <cmath>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <thread>

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
    EXPECT_EQ(NumberAt(1233, "speed"), 800.0);
    EXPECT_EQ(NumberAt(1234, "speed"), 700.0);
    EXPECT_EQ(NumberAt(1999, "speed"), 700.0);
    EXPECT_EQ(NumberAt(2000, "speed"), 800.0);
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
    EXPECT_EQ(NumberAt(1999, "a"), 1.5);
    EXPECT_EQ(NumberAt(2000, "a"), 10.0);
    EXPECT_EQ(NumberAt(3000, "a"), 12.5);
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
    EXPECT_EQ(NumberAt(0, "a"), 1.0);
    EXPECT_EQ(NumberAt(499, "a"), 1.0);
    EXPECT_EQ(NumberAt(499, "a"), 1.0);
    EXPECT_EQ(NumberAt(1000, "a"), 3.0);
    EXPECT_EQ(NumberAt(9000, "a"), 3.0);
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
    EXPECT_EQ(NumberAt(1009, "a"), 0.0);
    EXPECT_EQ(NumberAt(1010, "a"), 0.01);
    EXPECT_EQ(NumberAt(2000, "a"), 1.0);
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

// Everything that moves, with writes at given times.
constexpr std::string_view lively = R"(
seed = 7
[parameters.throttle]
value = 0.0
[parameters.speed]
value = 600.0
max = 3000
behaviour = { follows = "throttle", gain = 25, offset = 600, lag = 0.8, noise = 8, loads = [
  { at = 3.007, until = 11.1, by = -120 }] }
[parameters.pressure]
value = 1.0
behaviour = { follows = "speed", gain = 0.001, lag = 1.3, noise = 0.01 }
[parameters.valve]
value = 50.0
behaviour.rate = 3.7
[parameters.coolant]
value = 20.0
behaviour = { towards = 90, lag = 33, noise = 0.3, decimals = 1 }
[parameters.boost]
value = 0.0
behaviour = { ramp = { to = 2, at = 1.23, over = 9.87 }, lag = 0.31 }
)";
constexpr const char* livelyIds[] = {"speed", "pressure", "valve", "coolant", "boost"};

class LivelyEngineTest : public EngineBehaviourTest {
protected:
    /// Runs for 20 s, and reads everything at each whole second and, unless `every` is 0, each `every`
    /// milliseconds. Returns the bits of the readings at the whole seconds, mixed into one number.
    std::uint64_t Run(std::int64_t every) {
        Start(lively);
        std::uint64_t hash = 0;
        for (std::int64_t time = 0; time <= 20000; ++time) {
            if (time == 1003) {
                EXPECT_EQ(WriteAt(time, "throttle", 35), S_OK);
            } else if (time == 5555) {
                EXPECT_EQ(WriteAt(time, "valve", 20.5), S_OK);
            } else if (time == 9990) {
                EXPECT_EQ(WriteAt(time, "throttle", 12.5), S_OK);
            }
            if (time % 1000 != 0 && (every == 0 || time % every != 0))
                continue;
            for (const char* const id : livelyIds) {
                const double number = NumberAt(time, id);
                if (time % 1000 == 0)
                    hash = (hash ^ std::bit_cast<std::uint64_t>(number)) * 0x100000001B3U;
            }
        }
        return hash;
    }
};

TEST_F(LivelyEngineTest, HundredRuns_ReadTheSameBits) {
    const std::uint64_t first = Run(0);
    for (int run = 1; run < 100; ++run)
        ASSERT_EQ(Run(0), first);
}

TEST_F(LivelyEngineTest, TimesOfReading_DoNotMatter) {
    const std::uint64_t seldom = Run(0);
    for (const std::int64_t every : {1, 7, 10, 33, 50, 250})
        EXPECT_EQ(Run(every), seldom) << every;
}

TEST_F(LivelyEngineTest, EverySystem_ReadsTheSameBits) {
    EXPECT_EQ(Run(0), 15478611215585304609U);
}

TEST_F(LivelyEngineTest, OtherSeed_ChangesTheNoiseAlone) {
    Start(lively);
    const double noisy = NumberAt(500, "speed");
    const double quiet = NumberAt(500, "valve");
    std::string other(lively);
    other.replace(other.find("seed = 7"), 8, "seed = 8");
    Start(other);
    EXPECT_NE(NumberAt(500, "speed"), noisy);
    EXPECT_EQ(NumberAt(500, "valve"), quiet);
}

TEST_F(LivelyEngineTest, JumpOfAnHour_ReadsWhatStepsOfASecondRead) {
    Start(lively);
    ASSERT_EQ(WriteAt(0, "throttle", 35), S_OK);
    for (std::int64_t time = 0; time < 3600000; time += 1000)
        NumberAt(time, "pressure");
    const double slowly = NumberAt(3600000, "pressure");
    Start(lively);
    ASSERT_EQ(WriteAt(0, "throttle", 35), S_OK);
    EXPECT_EQ(NumberAt(3600000, "pressure"), slowly);
}

TEST_F(LivelyEngineTest, ReadersAndWritersOnManyThreads_SeeNumbersWithinTheirBounds) {
    Start(lively);
    std::vector<std::thread> threads;
    const auto readWithin = [this](const char* id, double least, double greatest) {
        for (int i = 0; i < 500; ++i) {
            CComVariant value;
            EXPECT_EQ(ReadValue(*engine, id, value), S_OK);
            const double number = NumberIn(ToValue(value.Get())).value_or(std::nan(""));
            EXPECT_TRUE(number >= least && number <= greatest) << id << ' ' << number;
        }
    };
    threads.emplace_back([&] { readWithin("speed", 472, 1483); });
    threads.emplace_back([&] { readWithin("pressure", 0.4, 1.5); });
    threads.emplace_back([&] { readWithin("valve", 0, 100); });
    threads.emplace_back([&] {
        for (int i = 0; i < 500; ++i) {
            now += 37;
            EXPECT_EQ(WriteValue(*engine, "throttle", CComVariant(LONG{i % 36}).Get()), S_OK);
            EXPECT_EQ(WriteValue(*engine, "valve", CComVariant(LONG{i % 101}).Get()), S_OK);
        }
    });
    for (std::thread& thread : threads)
        thread.join();
}

EngineParameter Follower(std::vector<std::string> followed) {
    EngineParameter parameter;
    parameter.value = 0.0;
    parameter.behaviour.emplace().follows = std::move(followed);
    return parameter;
}

TEST(EngineOfManyParameters, LevelsThatFollowTwoEach_AreReadInTime) {
    std::map<std::string, EngineParameter> parameters;
    parameters["a0"].value = parameters["b0"].value = 2.0;
    for (int level = 1; level <= 60; ++level) {
        const std::vector<std::string> below = {fmt::format("a{}", level - 1), fmt::format("b{}", level - 1)};
        parameters[fmt::format("a{}", level)] = Follower(below);
        EngineParameter& lagging = parameters[fmt::format("b{}", level)] = Follower(below);
        lagging.behaviour->lag = 1;
    }
    Engine engine(parameters, 0, [] { return 1000; });
    EXPECT_EQ(std::get<Reading>(engine.Read("a60")).value, Value(2.0));
}

TEST(EngineOfManyParameters, SumsOfSums_AreReadInTime) {
    std::map<std::string, EngineParameter> parameters;
    parameters["0"].value = 1.0;
    for (int i = 1; i <= 60; ++i) {
        EngineParameter& parameter = parameters[std::to_string(i)] = Follower({});
        const std::string before = std::to_string(i - 1);
        parameter.behaviour->sum = {{before, 0.5, 0}, {"0", 0, 1}, {before, 0.5, 0}};
    }
    Engine engine(parameters, 0, [] { return 1000; });
    EXPECT_EQ(std::get<Reading>(engine.Read("60")).value, Value(61.0));
}

TEST(EngineOfManyParameters, SumOfAll_IsReadInTime) {
    constexpr int length = 30000;
    std::map<std::string, EngineParameter> parameters;
    parameters["0"].value = 1.0;
    parameters["sum"] = Follower({});
    for (int i = 1; i < length; ++i) {
        parameters[std::to_string(i)] = Follower({std::to_string(i - 1)});
        parameters["sum"].behaviour->sum.push_back({std::to_string(i), 1, 0});
    }
    Engine engine(parameters, 0, [] { return 1000; });
    EXPECT_EQ(std::get<Reading>(engine.Read("sum")).value, Value(length - 1.0));
}

TEST(EngineOfManyParameters, LongChain_IsReadInTime) {
    constexpr int length = 30000;
    std::map<std::string, EngineParameter> parameters;
    parameters["0"].value = 2.0;
    for (int i = 1; i < length; ++i) {
        EngineParameter& parameter = parameters[std::to_string(i)] = Follower({std::to_string(i - 1)});
        if (i % 100 == 0)
            parameter.behaviour->lag = 0.5;
    }
    std::int64_t now = 0;
    Engine engine(parameters, 0, [&now] { return now; });
    EXPECT_EQ(std::get<Reading>(engine.Read(std::to_string(length - 1))).value, Value(0.0));
    EXPECT_EQ(std::get<Reading>(engine.Read("99")).value, Value(2.0));
    EXPECT_FALSE(engine.Write("0", 3.0).has_value());
    now = 50;
    EXPECT_EQ(std::get<Reading>(engine.Read("99")).value, Value(3.0));
}

TEST(EngineOverManyHours, InputThatNoLongerMoves_CostsNothing) {
    EngineParameter ramped;
    ramped.value = 0.0;
    ramped.behaviour.emplace().ramp = Ramp{0, 100, 0, 1003};
    std::map<std::string, EngineParameter> parameters = {{"ramp", ramped}, {"lagging", Follower({"ramp"})}};
    parameters["lagging"].behaviour->lag = 2;
    std::int64_t now = 0;
    Engine engine(parameters, 0, [&now] { return now; });
    now = 1010; // The ramp has ended between two of the steps at which inputs are taken.
    engine.Read("lagging");
    now = 300'000'000'000; // Ten years.
    EXPECT_EQ(std::get<Reading>(engine.Read("lagging")).value, Value(100.0));
}

} // namespace

} // namespace vant::host
