#include "host/object/CallGate.h"

#include "host/record/CallScope.h"
#include "host/record/Vocabulary.h"
#include "host/services/Services.h"

#include <gtest/gtest.h>
#include <stdexcept>

namespace vant::host {

namespace {

class CallGateTest : public ::testing::Test {
protected:
    CallGateTest() {
        journal.Observe([this](const Record& record) { records.push_back(record); });
        services.data.Set(L"a", CComVariant(LONG{1}));
    }
    HRESULT GetValue() {
        value.Clear();
        return services.dataStore.GetValue(CComBSTR(L"a").Get(), &value);
    }

    std::vector<Record> records;
    Journal journal{[] { return std::int64_t{0}; }};
    Services services{journal, [](const std::string&) { return S_OK; }};
    CComVariant value;
};

TEST_F(CallGateTest, InterceptorOfTheSecondGetValue_FailsThatCallAlone) {
    int calls = 0;
    services.gate.Intercept([&calls](const Record& call) -> std::optional<HRESULT> {
        if (call.service == service::DataStore && call.operation == operation::GetValue && ++calls == 2)
            return E_OUTOFMEMORY;
        return std::nullopt;
    });
    EXPECT_EQ(GetValue(), S_OK);
    EXPECT_EQ(services.dataStore.SetValue(CComBSTR(L"b").Get(), CComVariant(LONG{2}).Get()), S_OK);
    EXPECT_EQ(GetValue(), E_OUTOFMEMORY);
    EXPECT_EQ(value.Get().vt, VT_EMPTY);
    EXPECT_EQ(records.back().operation, operation::GetValue);
    EXPECT_EQ(records.back().result, E_OUTOFMEMORY);
    EXPECT_TRUE(records.back().arguments.empty());
    EXPECT_EQ(GetValue(), S_OK);
    EXPECT_EQ(value.Get().lVal, 1);
    EXPECT_EQ(records.size(), 4U);
}

TEST_F(CallGateTest, InterceptedCall_IsNotPerformed) {
    services.gate.Intercept([](const Record&) { return S_OK; });
    EXPECT_EQ(services.dataStore.SetValue(CComBSTR(L"b").Get(), CComVariant(LONG{2}).Get()), S_OK);
    EXPECT_FALSE(services.data.All().contains("b"));
}

TEST_F(CallGateTest, Interceptor_IsShownThreadAndCommand) {
    std::string seen;
    services.gate.Intercept([&seen](const Record& call) -> std::optional<HRESULT> {
        seen += call.thread + '/' + call.command + '/' + call.service + '/' + call.operation + ' ';
        return std::nullopt;
    });
    {
        const ThreadScope thread("worker");
        const CommandScope command("drop");
        GetValue();
    }
    services.service3.AddRef(); // IUnknown's operations do not pass the gate.
    services.service3.Release();
    EXPECT_EQ(seen, "worker/drop/DataStore/GetValue ");
}

TEST_F(CallGateTest, InterceptorThatThrows_FailsTheCall) {
    services.gate.Intercept(
        [](const Record&) -> std::optional<HRESULT> { throw std::runtime_error("broken"); });
    EXPECT_EQ(GetValue(), E_FAIL);
    EXPECT_EQ(records.back().result, E_FAIL);
    services.gate.Intercept({});
    EXPECT_EQ(GetValue(), S_OK);
}

} // namespace

} // namespace vant::host
