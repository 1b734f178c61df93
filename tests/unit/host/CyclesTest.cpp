#include "host/procedure/Cycles.h"

#include <gtest/gtest.h>

namespace vant::host {

namespace {

TEST(StrongComponents, NodesOfACycle_ShareANumber) {
    const auto components = StrongComponents({{1}, {2}, {0, 3}, {4}, {}});
    EXPECT_EQ(components[0], components[1]);
    EXPECT_EQ(components[1], components[2]);
    EXPECT_NE(components[2], components[3]);
    EXPECT_NE(components[3], components[4]);
}

TEST(StrongComponents, WithoutCycles_AllDiffer) {
    const auto components = StrongComponents({{1, 2}, {3}, {3}, {}});
    EXPECT_NE(components[0], components[1]);
    EXPECT_NE(components[1], components[2]);
    EXPECT_NE(components[2], components[3]);
    EXPECT_TRUE(StrongComponents({}).empty());
}

TEST(StrongComponents, LongPath_NeedsNoRecursion) {
    constexpr std::size_t length = 300000;
    Graph graph(length);
    for (std::size_t i = 0; i + 1 < length; ++i)
        graph[i].push_back(i + 1);
    graph.back().push_back(0);
    const auto components = StrongComponents(graph);
    EXPECT_EQ(components.front(), components.back());
}

} // namespace

} // namespace vant::host
