#include "platform/Event.h"
#include "platform/portable/testing.h"

#include <gtest/gtest.h>

namespace vant {

namespace {

TEST(CreateEventW, Name_GivesNoEvent) {
    EXPECT_EQ(nullptr, CreateEventW(nullptr, FALSE, FALSE, L"name"));
}

TEST(LiveEventCount, FollowsEvents) {
    const std::size_t before = testing::LiveEventCount();
    {
        const Event first;
        const Event second(Event::Kind::ManualReset);
        EXPECT_EQ(before + 2, testing::LiveEventCount());
    }
    EXPECT_EQ(before, testing::LiveEventCount());
}

} // namespace

} // namespace vant
