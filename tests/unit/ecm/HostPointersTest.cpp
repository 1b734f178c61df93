#include "ecm/HostPointers.h"

#include "tests/support/TestHost.h"

#include <gtest/gtest.h>
#include <type_traits>

namespace vant {

namespace {

using ParameterPtr = TComParameterPtr<CCheckedResult>;
using DataServicePtr = TComDataServicePtr<CCheckedResult>;
using ConnectionPtr = TComConnectionPtr<CCheckedResult>;
using ECMServicesPtr = TComECMServicesPtr<CCheckedResult>;

class HostPointers : public ::testing::Test {
protected:
    HostPointers() {
        host.parameters[L"RPM"].text = L"800";
        host.Context()->get_ParameterService(&service);
        service->GetParameter(CComBSTR(L"RPM").Get(), 1, &object);
        host.ForgetCalls();
        atStart = host.OutstandingReferences();
    }
    LONG Added() const { return host.OutstandingReferences() - atStart; }

    test::TestHost host;
    CComPtr<IDataServiceOld> service;
    CComPtr<IUnknown> object; // a parameter
    LONG atStart = 0;
};

/// The code that building a `Pointer` from `object` throws.
template <class Pointer>
HRESULT CodeOfBuilding(IUnknown* object) {
    try {
        const Pointer pointer(object);
    } catch (const CComErrorHandlerException& exception) {
        return exception.Code();
    }
    return S_OK;
}

TEST_F(HostPointers, BuiltFromAnObject_HoldsItsInterfaceAndOneReference) {
    {
        const ParameterPtr parameter(object.Get());
        EXPECT_EQ(1, Added());
        CComBSTR text;
        ASSERT_EQ(S_OK, parameter->get_Text(&text));
        EXPECT_EQ(L"800", text.Text());
    }
    EXPECT_EQ(0, Added());
    EXPECT_EQ((std::vector<std::string>{"QueryInterface(IParameterOld)", "get_Text()"}), host.calls);
}

TEST_F(HostPointers, BuiltFromAnObjectWithoutTheInterface_ThrowsNoInterface) {
    host.parameters[L"RPM"].offersInterface = false;
    EXPECT_EQ(E_NOINTERFACE, CodeOfBuilding<ParameterPtr>(object.Get()));
    EXPECT_EQ(E_NOINTERFACE, CodeOfBuilding<ECMServicesPtr>(object.Get()));
    EXPECT_EQ(0, Added());
}

TEST_F(HostPointers, BuiltFromAnObjectThatFailsOtherwise_ThrowsItsCode) {
    host.fail["QueryInterface"] = E_OUTOFMEMORY;
    EXPECT_EQ(E_OUTOFMEMORY, CodeOfBuilding<ParameterPtr>(object.Get()));
    EXPECT_EQ(0, Added());
}

/// Returns success and null for every request for an interface.
struct EmptyHanded final : IUnknown {
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** out) override {
        *out = nullptr;
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
};

TEST_F(HostPointers, BuiltFromAnObjectThatSucceedsWithNothing_ThrowsNoInterface) {
    EmptyHanded emptyHanded;
    try {
        const TComParameterPtr<CCheckedResult> pointer(static_cast<IUnknown*>(&emptyHanded));
        FAIL() << "it holds nothing";
    } catch (const CComErrorHandlerException& failure) {
        EXPECT_EQ(failure.Code(), E_NOINTERFACE);
    }
}

TEST_F(HostPointers, BuiltFromNull_ThrowsPointer) {
    EXPECT_EQ(E_POINTER, CodeOfBuilding<ParameterPtr>(nullptr));
    EXPECT_EQ(E_POINTER, CodeOfBuilding<ECMServicesPtr>(nullptr));
}

TEST_F(HostPointers, BuiltFromItsOwnInterface_AddsAReferenceAndAsksNothing) {
    {
        const DataServicePtr pointer(service.Get());
        EXPECT_EQ(service.Get(), pointer.Get());
        EXPECT_EQ(1, Added());
    }
    EXPECT_EQ(0, Added());
    EXPECT_TRUE(host.calls.empty());
}

TEST_F(HostPointers, DefaultConstructed_HoldsNothing) {
    const ConnectionPtr pointer;
    EXPECT_FALSE(pointer);
    EXPECT_EQ(nullptr, pointer.Get());
}

TEST_F(HostPointers, FilledByACallee_ReleasesAtItsEnd) {
    {
        ConnectionPtr connection;
        ASSERT_EQ(S_OK, service->GetConnection(&connection));
        EXPECT_EQ(1, Added());
    }
    EXPECT_EQ(0, Added());
}

TEST_F(HostPointers, Copy_AddsAReference) {
    const DataServicePtr first(service.Get());
    {
        const DataServicePtr second = first;
        EXPECT_EQ(first.Get(), second.Get());
        EXPECT_EQ(2, Added());
    }
    EXPECT_EQ(1, Added());
}

TEST_F(HostPointers, AssignedInterface_AddsAReferenceAndReleasesTheOldOne) {
    test::TestHost otherHost;
    CComPtr<IDataServiceOld> other;
    otherHost.Context()->get_ParameterService(&other);
    {
        DataServicePtr pointer;
        pointer = service.Get();
        EXPECT_EQ(1, Added());
        pointer = other.Get();
        EXPECT_EQ(other.Get(), pointer.Get());
        EXPECT_EQ(0, Added());
        EXPECT_EQ(2, otherHost.OutstandingReferences());
    }
    EXPECT_EQ(1, otherHost.OutstandingReferences());
}

TEST_F(HostPointers, AssignedPointer_AddsAReference) {
    const DataServicePtr first(service.Get());
    DataServicePtr second;
    second = first;
    EXPECT_EQ(2, Added());
    second = second.Get();
    EXPECT_EQ(2, Added());
}

TEST_F(HostPointers, AssignedNull_Releases) {
    DataServicePtr pointer(service.Get());
    pointer = static_cast<IDataServiceOld*>(nullptr);
    EXPECT_EQ(0, Added());
}

template <class Pointer, class Interface>
constexpr bool owns = std::is_base_of_v<CComPtr<Interface>, Pointer>&& std::has_virtual_destructor_v<Pointer>;

TEST(HostPointerClasses, OwnOneEngineDataInterfaceEachAndHaveAVirtualDestructor) {
    EXPECT_TRUE((owns<ParameterPtr, IParameterOld>));
    EXPECT_TRUE((owns<DataServicePtr, IDataServiceOld>));
    EXPECT_TRUE((owns<ConnectionPtr, IConnectionOld>));
    EXPECT_TRUE((owns<ECMServicesPtr, IECMServicesOld>));
}

} // namespace

} // namespace vant
