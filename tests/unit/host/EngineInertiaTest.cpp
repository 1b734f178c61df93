#include "host/engine/model/Inertia.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace vant::host {

namespace {

/// The distance of two positive numbers in units in the last place of the second.
double UnitsApart(double a, double b) {
    return std::abs(a - b) / (std::nextafter(b, std::numeric_limits<double>::infinity()) - b);
}

TEST(Decay, KnownPowers_AreMatchedWithinThreeUnits) {
    EXPECT_EQ(Decay(0), 1.0);
    // From a calculation with 50 digits.
    EXPECT_LE(UnitsApart(Decay(1e-5), 0.99999000004999983333), 3);
    EXPECT_LE(UnitsApart(Decay(0.01), 0.99004983374916805357), 3);
    EXPECT_LE(UnitsApart(Decay(0.34657), 0.70710931990242019910), 3);
    EXPECT_LE(UnitsApart(Decay(0.5), 0.60653065971263342360), 3);
    EXPECT_LE(UnitsApart(Decay(1), 0.36787944117144232160), 3);
    EXPECT_LE(UnitsApart(Decay(10), 4.5399929762484851536e-5), 3);
    EXPECT_LE(UnitsApart(Decay(100), 3.7200759760208359630e-44), 3);
    EXPECT_LE(UnitsApart(Decay(699.5), 1.6255858439919857049e-304), 3);
}

TEST(Decay, Everywhere_AgreesWithTheStandardLibrary) {
    for (double x = 0; x < 690; x += 0.0371)
        ASSERT_LE(UnitsApart(Decay(x), std::exp(-x)), 3) << x;
}

TEST(Decay, LargeArgument_ReturnsZero) {
    EXPECT_EQ(Decay(700), 0.0);
    EXPECT_EQ(Decay(std::numeric_limits<double>::infinity()), 0.0);
}

// Literals as one system has made them: the others must have the same bits.
TEST(Decay, EverySystem_HasTheSameBits) {
    EXPECT_EQ(Decay(0.01), 0x1.fae7cfd2b9cfep-1);
    EXPECT_EQ(Decay(0.7), 0x1.fc80db9dd5542p-2);
    EXPECT_EQ(Decay(3.3), 0x1.2e259bb85be84p-5);
    EXPECT_EQ(Decay(123.456), 0x1.da9fb9e4ee72p-179);
}

TEST(Inertia, Lag_IsTheClosedFormAtEveryStep) {
    Inertia speed(600, 2, 0);
    speed.Follow(1600, 100);
    EXPECT_EQ(speed.At(100), 600.0);
    for (std::int64_t step = 101; step < 5000; ++step)
        ASSERT_NEAR(speed.At(step), 1600 - 1000 * std::exp(-static_cast<double>(step - 100) * 0.01 / 2),
                    1e-9);
}

TEST(Inertia, LagAfterOneTimeConstant_HasLeftAnEthOfTheDistance) {
    Inertia speed(0, 2, 0);
    speed.Follow(1, 0);
    EXPECT_NEAR(speed.At(200), 1 - 0.36787944117144233, 1e-15);
}

TEST(Inertia, LagAfterALongTime_IsTheInputItself) {
    Inertia speed(0.1, 0.5, 0);
    speed.Follow(0.3, 0);
    EXPECT_EQ(speed.At(360000000), 0.3);
}

TEST(Inertia, Rate_GoesStraightAndStopsAtTheInput) {
    Inertia valve(50, 0, 4);
    valve.Follow(40, 0);
    EXPECT_EQ(valve.At(100), 46.0);
    EXPECT_EQ(valve.At(250), 40.0);
    EXPECT_EQ(valve.At(251), 40.0);
    valve.Follow(60, 300);
    EXPECT_EQ(valve.At(400), 44.0);
    EXPECT_EQ(valve.At(800), 60.0);
    EXPECT_EQ(valve.At(900), 60.0);
}

TEST(Inertia, InputThatChangesOnTheWay_IsFollowedFromThere) {
    Inertia valve(0, 0, 1);
    valve.Follow(10, 0);
    valve.Follow(0, 500);
    EXPECT_EQ(valve.At(500), 5.0);
    EXPECT_EQ(valve.At(700), 3.0);
}

TEST(Inertia, SameInputAgain_ChangesNoBit) {
    Inertia once(600, 1.7, 0);
    Inertia often(600, 1.7, 0);
    once.Follow(1475, 0);
    for (std::int64_t step = 0; step < 1000; ++step)
        often.Follow(1475, step);
    EXPECT_EQ(often.At(1000), once.At(1000));
}

} // namespace

} // namespace vant::host
