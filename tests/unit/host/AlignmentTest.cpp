#include "host/suite/Alignment.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace vant::host {

namespace {

/// "=" for a pair, "a" or "b" for an item without a counterpart. The pairs must be equal, in order and
/// complete.
std::string Aligned(const std::vector<std::size_t>& a, const std::vector<std::size_t>& b,
                    std::size_t most = 1000) {
    const auto pairs = Align(a, b, most);
    if (!pairs)
        return "too different";
    std::string shape;
    std::size_t nextA = 0;
    std::size_t nextB = 0;
    for (const AlignedPair& each : *pairs) {
        if (each.a) {
            EXPECT_EQ(*each.a, nextA++);
        }
        if (each.b) {
            EXPECT_EQ(*each.b, nextB++);
        }
        if (each.a && each.b) {
            EXPECT_EQ(a[*each.a], b[*each.b]);
        }
        shape += each.a && each.b ? '=' : each.a ? 'a' : 'b';
    }
    EXPECT_EQ(nextA, a.size());
    EXPECT_EQ(nextB, b.size());
    return shape;
}

std::size_t LongestCommon(const std::vector<std::size_t>& a, const std::vector<std::size_t>& b) {
    std::vector<std::vector<std::size_t>> best(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
    for (std::size_t i = 0; i < a.size(); ++i) {
        for (std::size_t k = 0; k < b.size(); ++k)
            best[i + 1][k + 1] = a[i] == b[k] ? best[i][k] + 1 : std::max(best[i][k + 1], best[i + 1][k]);
    }
    return best[a.size()][b.size()];
}

TEST(Align, EqualSequences_ArePairs) {
    EXPECT_EQ(Aligned({}, {}), "");
    EXPECT_EQ(Aligned({1, 2, 1}, {1, 2, 1}), "===");
}

TEST(Align, MissingItems_HaveNoCounterpart) {
    EXPECT_EQ(Aligned({1}, {}), "a");
    EXPECT_EQ(Aligned({}, {1, 2}), "bb");
    EXPECT_EQ(Aligned({1, 2, 3}, {1, 3}), "=a=");
    EXPECT_EQ(Aligned({1, 3}, {0, 1, 3, 4}), "b==b");
}

TEST(Align, MoreDifferencesThanAllowed_AreNotAligned) {
    EXPECT_EQ(Aligned({1, 2}, {3, 4}, 4), "aabb");
    EXPECT_EQ(Aligned({1, 2}, {3, 4}, 3), "too different");
}

TEST(Align, RandomSequences_HaveAsManyPairsAsPossible) {
    std::mt19937 random(1);
    for (int round = 0; round < 300; ++round) {
        std::vector<std::size_t> a(random() % 20);
        std::vector<std::size_t> b(random() % 20);
        for (auto* const each : {&a, &b}) {
            for (std::size_t& item : *each)
                item = random() % 4;
        }
        const std::string shape = Aligned(a, b);
        EXPECT_EQ(static_cast<std::size_t>(std::count(shape.begin(), shape.end(), '=')), LongestCommon(a, b));
    }
}

} // namespace

} // namespace vant::host
