// Every test of this program must free all strings, and close all events, that it or a command has made.

#include "platform/portable/testing.h"

#include <gtest/gtest.h>

namespace {

class LeakCheck final : public testing::EmptyTestEventListener {
    void OnTestStart(const testing::TestInfo&) override {
        m_strings = vant::testing::LiveBstrCount();
        m_events = vant::testing::LiveEventCount();
    }
    void OnTestEnd(const testing::TestInfo&) override {
        EXPECT_EQ(vant::testing::LiveBstrCount(), m_strings) << "strings have been leaked";
        EXPECT_EQ(vant::testing::LiveEventCount(), m_events) << "events have been leaked";
    }

    std::size_t m_strings = 0;
    std::size_t m_events = 0;
};

[[maybe_unused]] const bool installed = [] {
    testing::UnitTest::GetInstance()->listeners().Append(new LeakCheck);
    return true;
}();

} // namespace
