#include "host/services/ComponentService.h"

#include <gtest/gtest.h>

namespace vant::host {

namespace {

HRESULT Set(ComponentService& service, const wchar_t* component, const wchar_t* name) {
    return service.SetComponentProperty(CComBSTR(component).Get(), CComBSTR(name).Get(),
                                        CComBSTR(L"value").Get());
}

TEST(ComponentService, WithoutComponents_AcceptsEveryOne) {
    Journal journal;
    CallGate gate{journal};
    ComponentService service(gate);
    EXPECT_EQ(Set(service, L"any", L"thing"), S_OK);
}

TEST(ComponentService, WithComponents_RefusesOthersAndUnknownProperties) {
    Journal journal;
    CallGate gate{journal};
    ComponentService service(gate, {{"gauge", {"text"}}, {"lamp", {}}});
    EXPECT_EQ(Set(service, L"gauge", L"text"), S_OK);
    EXPECT_EQ(Set(service, L"gauge", L"value"), HRESULT_FROM_WIN32(ERROR_NOT_FOUND));
    EXPECT_EQ(Set(service, L"lamp", L"anything"), S_OK);
    EXPECT_EQ(Set(service, L"Lamp", L"anything"), HRESULT_FROM_WIN32(ERROR_NOT_FOUND));
}

} // namespace

} // namespace vant::host
