#include "module/registration/Script.h"
#include "platform/portable/testing.h"
#include "tests/unit/module/FakeKeyStore.h"

#include <gtest/gtest.h>
#include <string>

namespace vant {
namespace {

std::wstring trace;

TEST(ScriptTrace, MalformedScript_TracesLineAndColumn) {
    FakeKeyStore store;
    trace.clear();
    testing::SetOutputDebugHook([](LPCWSTR text) { trace += text; });
    const HRESULT code = RunScript("HKCR\r\n{\r\n    A = d '1'\r\n}", L"m", ScriptMode::Register, store);
    testing::SetOutputDebugHook(nullptr);
    EXPECT_EQ(code, scriptMalformed);
    EXPECT_NE(trace.find(L"line 3, column 9"), std::wstring::npos) << std::string(trace.begin(), trace.end());
}

} // namespace
} // namespace vant
