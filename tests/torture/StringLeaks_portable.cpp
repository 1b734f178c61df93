// Every test of this program must free all strings that it or a command has made.

#include "platform/portable/testing.h"

#include <gtest/gtest.h>

namespace {

class StringLeakCheck final : public testing::EmptyTestEventListener {
    void OnTestStart(const testing::TestInfo&) override { m_before = vant::testing::LiveBstrCount(); }
    void OnTestEnd(const testing::TestInfo&) override {
        EXPECT_EQ(vant::testing::LiveBstrCount(), m_before) << "strings have been leaked";
    }

    std::size_t m_before = 0;
};

[[maybe_unused]] const bool installed = [] {
    testing::UnitTest::GetInstance()->listeners().Append(new StringLeakCheck);
    return true;
}();

} // namespace
