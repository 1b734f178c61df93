#include "host/suite/Combinations.h"

#include <gtest/gtest.h>
#include <set>
#include <tuple>

namespace vant::host {

namespace {

std::size_t CountPairs(const std::vector<Combination>& combinations) {
    std::set<std::tuple<std::size_t, std::size_t, std::size_t, std::size_t>> pairs;
    for (const Combination& each : combinations)
        for (std::size_t i = 0; i < each.size(); ++i)
            for (std::size_t j = i + 1; j < each.size(); ++j)
                pairs.emplace(i, each[i], j, each[j]);
    return pairs.size();
}

TEST(Combinations, All_ChangeTheLastChoiceFastest) {
    EXPECT_EQ(AllCombinations({2, 3}),
              (std::vector<Combination>{{0, 0}, {0, 1}, {0, 2}, {1, 0}, {1, 1}, {1, 2}}));
}

TEST(Combinations, AllOfNoChoice_IsTheEmptyOne) {
    EXPECT_EQ(AllCombinations({}), std::vector<Combination>{{}});
}

TEST(Combinations, PairsOfTwoChoices_AreAll) {
    EXPECT_EQ(PairCombinations({2, 3}), AllCombinations({2, 3}));
}

TEST(Combinations, Pairs_HaveEveryTwoOptionsTogetherInFewCombinations) {
    const auto few = PairCombinations({4, 4, 4, 4});
    EXPECT_EQ(CountPairs(few), CountPairs(AllCombinations({4, 4, 4, 4})));
    EXPECT_LE(few.size(), 28U); // Of 256; 16 would be the least.
}

TEST(Combinations, Pairs_TakeOnlyOptionsThatExist) {
    for (const Combination& each : PairCombinations({3, 1, 2})) {
        ASSERT_EQ(each.size(), 3U);
        EXPECT_LT(each[0], 3U);
        EXPECT_EQ(each[1], 0U);
        EXPECT_LT(each[2], 2U);
    }
}

TEST(Combinations, Pairs_AreTheSameEveryTime) {
    EXPECT_EQ(PairCombinations({3, 4, 5}), PairCombinations({3, 4, 5}));
}

TEST(Combinations, Count_EndsAtTheMost) {
    EXPECT_EQ(CountCombinations({2, 3, 4}, 100), 24U);
    EXPECT_EQ(CountCombinations({20, 30}, 100), 100U);
    EXPECT_EQ(CountCombinations(std::vector<std::size_t>(50, 10'000), 100), 100U);
}

} // namespace

} // namespace vant::host
