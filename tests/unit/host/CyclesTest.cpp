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

TEST(MarkReachable, Marks_WhatCanBeReached) {
    std::vector<bool> marked(5);
    MarkReachable({{1}, {2}, {1}, {0}, {}}, 1, marked);
    EXPECT_EQ(marked, (std::vector<bool>{false, true, true, false, false}));
}

TEST(Beginnings, NodesThatNoOtherLeadsTo_AreOnesFromWhichTheRestIsReached) {
    // 0 is marked; 1 leads to 2; 3 and 4 form a cycle that leads to 2, too.
    const Graph graph = {{}, {2}, {0}, {4}, {3, 2}};
    EXPECT_EQ(Beginnings(graph, {true, false, false, false, false}), (std::vector<std::size_t>{1, 3}));
    EXPECT_TRUE(Beginnings(graph, std::vector<bool>(5, true)).empty());
}

} // namespace

} // namespace vant::host
