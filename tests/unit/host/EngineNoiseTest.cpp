#include "host/engine/model/Noise.h"

#include <cmath>
#include <gtest/gtest.h>
#include <string>

namespace vant::host {

namespace {

TEST(Noise, Numbers_AreThoseOfSplitMix64) {
    // The generator's published numbers for the seed 1234567.
    const std::uint64_t known[] = {6457827717110365317U, 3203168211198807973U, 9817491932198370423U,
                                   4593380528125082431U, 16408922859458223821U};
    for (std::uint64_t i = 0; i < 5; ++i)
        EXPECT_EQ(NoiseAt(1234567, i), static_cast<double>(known[i] >> 11) * 0x1p-52 - 1);
}

TEST(Noise, LongSeries_FillsItsRangeEvenly) {
    const std::uint64_t stream = NoiseStream(1, "101000");
    double sum = 0;
    double squares = 0;
    int parts[10] = {};
    for (std::uint64_t i = 0; i < 100000; ++i) {
        const double noise = NoiseAt(stream, i);
        ASSERT_GE(noise, -1);
        ASSERT_LT(noise, 1);
        sum += noise;
        squares += noise * noise;
        ++parts[static_cast<int>((noise + 1) * 5)];
    }
    EXPECT_NEAR(sum / 100000, 0, 0.01);
    EXPECT_NEAR(squares / 100000, 1.0 / 3, 0.01);
    for (const int part : parts)
        EXPECT_NEAR(part, 10000, 400);
}

TEST(Noise, DifferentSeedOrName_ProducesDifferentNoise) {
    const auto correlation = [](std::uint64_t a, std::uint64_t b) {
        double sum = 0;
        for (std::uint64_t i = 0; i < 10000; ++i)
            sum += NoiseAt(a, i) * NoiseAt(b, i);
        return sum / 10000 * 3;
    };
    const std::uint64_t stream = NoiseStream(1, "101000");
    EXPECT_NEAR(correlation(stream, stream), 1, 0.05);
    EXPECT_NEAR(correlation(stream, NoiseStream(2, "101000")), 0, 0.05);
    EXPECT_NEAR(correlation(stream, NoiseStream(1, "101001")), 0, 0.05);
    EXPECT_NEAR(correlation(stream, NoiseStream(1, "")), 0, 0.05);
}

} // namespace

} // namespace vant::host
