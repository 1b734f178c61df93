#include "platform/portable/kernel.h"
#include "platform/portable/testing.h"

#include <gtest/gtest.h>
#include <string>

namespace vant {
namespace {

TEST(PortableDebugOutput, Text_GoesToTheHookWhileThereIsOne) {
    static std::wstring received;
    received.clear();
    testing::SetOutputDebugHook([](LPCWSTR text) { received += text; });
    OutputDebugStringW(L"seen");
    testing::SetOutputDebugHook(nullptr);
    OutputDebugStringW(L"unseen");
    EXPECT_EQ(L"seen", received);
}

} // namespace
} // namespace vant
