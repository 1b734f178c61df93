#include "tests/torture/EcmParameterUse.h"

#include <gtest/gtest.h>

namespace vant::test {

namespace {

/// The code that `action` throws or returns.
template <class Action>
HRESULT CodeOf(Action action) {
    try {
        return action();
    } catch (const CComErrorHandlerException& exception) {
        return exception.Code();
    } catch (...) {
        return E_UNEXPECTED;
    }
}

} // namespace

EngineForOneUse::EngineForOneUse(LONG protocolKind) {
    services.protocolKind = protocolKind;
    services.sessionValues[190] = CComVariant(LONG{750});
    host.parameters[L"190"].value = CComVariant(LONG{800});
    host.parameters[L"11"].value = CComVariant(CComBSTR(L"low"));
    host.parameters[L"14"].value = CComVariant(CComBSTR(L"high"));
    host.Context()->get_ParameterService(&dataService);
    host.ForgetCalls();
}

Reading ReadOnce(EngineForOneUse& engine, Fault& fault, std::size_t number) {
    LONG value = untouched;
    fault.Plan(engine.host, number);
    fault.Enable();
    const HRESULT code = CodeOf([&] {
        const ECMParameter2 parameter(engine.services.Object(), engine.dataService.Get());
        return parameter.ReadLong(L"190", value);
    });
    fault.Disable();
    EXPECT_EQ(engine.host.OutstandingReferences(), 1) << "only the data service is held, by the engine";
    return {code, value};
}

HRESULT WriteOnce(EngineForOneUse& engine, Fault& fault, std::size_t number) {
    const HRESULT code = [&] {
        ECMParameter2 parameter(engine.services.Object(), engine.dataService.Get());
        engine.host.ForgetCalls();
        fault.Plan(engine.host, number);
        fault.Enable();
        const HRESULT written = CodeOf([&] { return parameter.WriteLong(L"190", 5, true); });
        fault.Disable();
        return written;
    }();
    EXPECT_EQ(engine.host.OutstandingReferences(), 1) << "only the data service is held, by the engine";
    return code;
}

} // namespace vant::test
