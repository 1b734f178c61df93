// What the readings of engines that move depend on, and what makes no difference.

#include "tests/unit/host/EngineOnClock.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>
#include <ostream>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace vant::host {

namespace {

// Everything that moves.
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

// Everything with a state, one on top of the other.
constexpr std::string_view stateful = R"(
seed = 7
[parameters.throttle]
value = 0.0
[parameters.speed]
value = 600.0
behaviour = { follows = "throttle", gain = 25, offset = 600, delay = 0.37, lag = 0.8, noise = 8 }
[parameters.load]
value = 0.0
behaviour = { ramp = { to = 3, at = 2.22, over = 7.77 }, stick = 0.3 }
[parameters.torque]
value = 0.0
behaviour = { sum = [{ of = "speed", gain = 0.1 }, { of = "load", gain = -7, offset = 1 }], delay = 0.111, lag = 0.3 }
[parameters.limiter]
value = 0.0
behaviour = { threshold = { of = "torque", on = 120, off = 90, high = 1, low = 0 }, delay = 0.21 }
[parameters.limited]
value = 0.0
behaviour = { sum = [{ of = "torque" }, { of = "limiter", gain = -50 }], stick = 3, rate = 60 }
)";

struct Write {
    std::int64_t time;
    const char* id;
    double number;
};

/// An engine with 20 s of writes.
struct MovingEngine {
    const char* name;
    std::string_view toml;
    std::vector<Write> writes;
    std::vector<const char*> read;
    std::uint64_t hash; ///< Of the readings at the whole seconds.
};

std::ostream& operator<<(std::ostream& out, const MovingEngine& engine) {
    return out << engine.name;
}

class EngineReadingsTest : public EngineOnClock, public ::testing::WithParamInterface<MovingEngine> {
protected:
    /// Runs for 20 s with the writes, and reads everything at each whole second and, unless `every` is 0,
    /// each `every` milliseconds. Returns the bits of the readings at the whole seconds, mixed into one
    /// number.
    std::uint64_t Run(std::int64_t every) {
        Start(GetParam().toml);
        std::uint64_t hash = 0;
        auto write = GetParam().writes.begin();
        for (std::int64_t time = 0; time <= 20000; ++time) {
            if (write != GetParam().writes.end() && write->time == time) {
                EXPECT_EQ(WriteAt(time, write->id, write->number), S_OK);
                ++write;
            }
            if (time % 1000 != 0 && (every == 0 || time % every != 0))
                continue;
            for (const char* const id : GetParam().read) {
                const double number = NumberAt(time, id);
                if (time % 1000 == 0)
                    hash = (hash ^ std::bit_cast<std::uint64_t>(number)) * 0x100000001B3U;
            }
        }
        return hash;
    }
};

TEST_P(EngineReadingsTest, HundredRuns_ReadTheSameBits) {
    const std::uint64_t first = Run(0);
    for (int run = 1; run < 100; ++run)
        ASSERT_EQ(Run(0), first);
}

TEST_P(EngineReadingsTest, TimesOfReading_DoNotMatter) {
    const std::uint64_t seldom = Run(0);
    for (const std::int64_t every : {1, 7, 10, 33, 50, 250})
        EXPECT_EQ(Run(every), seldom) << every;
}

TEST_P(EngineReadingsTest, EverySystem_ReadsTheSameBits) {
    EXPECT_EQ(Run(0), GetParam().hash);
}

INSTANTIATE_TEST_SUITE_P(
    Engines, EngineReadingsTest,
    ::testing::Values(
        MovingEngine{.name = "Lively",
                     .toml = lively,
                     .writes = {{1003, "throttle", 35}, {5555, "valve", 20.5}, {9990, "throttle", 12.5}},
                     .read = {"speed", "pressure", "valve", "coolant", "boost"},
                     .hash = 15478611215585304609U},
        MovingEngine{.name = "Stateful",
                     .toml = stateful,
                     .writes = {{1003, "throttle", 35}, {9996, "throttle", 12.5}},
                     .read = {"limited", "speed", "limiter", "load", "torque"},
                     .hash = 1728679268822723204U}),
    [](const auto& engine) { return engine.param.name; });

class MovingEngineTest : public EngineOnClock {};

TEST_F(MovingEngineTest, OtherSeed_ChangesTheNoiseAlone) {
    Start(lively);
    const double noisy = NumberAt(500, "speed");
    const double quiet = NumberAt(500, "valve");
    std::string other(lively);
    other.replace(other.find("seed = 7"), 8, "seed = 8");
    Start(other);
    EXPECT_NE(NumberAt(500, "speed"), noisy);
    EXPECT_EQ(NumberAt(500, "valve"), quiet);
}

TEST_F(MovingEngineTest, JumpOfAnHour_ReadsWhatStepsOfASecondRead) {
    Start(lively);
    ASSERT_EQ(WriteAt(0, "throttle", 35), S_OK);
    for (std::int64_t time = 0; time < 3600000; time += 1000)
        NumberAt(time, "pressure");
    const double slowly = NumberAt(3600000, "pressure");
    Start(lively);
    ASSERT_EQ(WriteAt(0, "throttle", 35), S_OK);
    EXPECT_EQ(NumberAt(3600000, "pressure"), slowly);
}

TEST_F(MovingEngineTest, ReadersAndWritersOnManyThreads_SeeNumbersWithinTheirBounds) {
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

TEST_F(MovingEngineTest, Limiter_SwitchesOnAndOffAgain) {
    Start(stateful);
    ASSERT_EQ(WriteAt(1003, "throttle", 35), S_OK);
    EXPECT_EQ(NumberAt(1500, "limiter"), 0.0);
    EXPECT_EQ(NumberAt(8000, "limiter"), 1.0);
    ASSERT_EQ(WriteAt(9996, "throttle", 0), S_OK);
    EXPECT_EQ(NumberAt(20000, "limiter"), 0.0);
}

} // namespace

} // namespace vant::host
