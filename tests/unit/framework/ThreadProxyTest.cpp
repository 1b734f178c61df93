#include "framework/ThreadProxy.h"

#include "framework/ThreadManagement.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <stdexcept>

namespace vant {

namespace {

/// What a proxy calls.
class Owner : public ComNonAddInThreadMgt<Owner> {
public:
    static const ThreadCallbackRow<Owner>* CallbackMap() {
        static const ThreadCallbackRow<Owner> map[] = {{{0, 0, 0}, nullptr, 0, nullptr}};
        return map;
    }
    DWORD Count() {
        ++runs;
        return 5;
    }
    DWORD Fail() {
        ++runs;
        throw std::runtime_error("failed");
    }

    int runs = 0;
};
/// Also an owner of threads, but of another class.
class OtherOwner : public ComNonAddInThreadMgt<OtherOwner> {
public:
    static const ThreadCallbackRow<OtherOwner>* CallbackMap() {
        static const ThreadCallbackRow<OtherOwner> map[] = {{{0, 0, 0}, nullptr, 0, nullptr}};
        return map;
    }
};

using Proxy = CComObject<CNonAddInThreadProxy<Owner>>;

class ThreadProxy : public ::testing::Test {
protected:
    ThreadProxy() {
        EXPECT_EQ(S_OK, Proxy::CreateInstance(&proxy));
        callback = proxy;
    }

    Owner owner;
    Proxy* proxy = nullptr;
    CComPtr<IThreadCallback> callback;
};

TEST_F(ThreadProxy, CallsTheMemberFunctionAndReturnsEFail) {
    proxy->Set(&Owner::Count, owner);
    EXPECT_EQ(E_FAIL, callback->RunOnThread());
    EXPECT_EQ(1, owner.runs);
}

TEST_F(ThreadProxy, MemberFunctionThatThrows_ReturnsEFail) {
    proxy->Set(&Owner::Fail, owner);
    EXPECT_EQ(E_FAIL, callback->RunOnThread());
    EXPECT_EQ(1, owner.runs);
}

TEST_F(ThreadProxy, OwnerOfAnotherClass_IsNotCalled) {
    OtherOwner other;
    proxy->Set(&Owner::Count, other);
    EXPECT_EQ(E_FAIL, callback->RunOnThread());
    EXPECT_EQ(0, owner.runs);
}

TEST_F(ThreadProxy, Interfaces_AreIUnknownIDispatchAndItsOwn) {
    CComPtr<IUnknown> unknown;
    CComPtr<IDispatch> dispatch;
    CComPtr<IThreadCallback> again;
    EXPECT_EQ(S_OK, callback.QueryInterface(&unknown));
    EXPECT_EQ(S_OK, callback.QueryInterface(&dispatch));
    EXPECT_EQ(S_OK, callback.QueryInterface(&again));
    EXPECT_EQ(callback.Get(), unknown.Get());
    EXPECT_EQ(callback.Get(), dispatch.Get());
    EXPECT_EQ(callback.Get(), again.Get());
    CComPtr<IClassFactory> other;
    EXPECT_EQ(E_NOINTERFACE, callback.QueryInterface(&other));
}

TEST_F(ThreadProxy, Dispatch_HasOneTypeDescription) {
    UINT count = 0;
    EXPECT_EQ(S_OK, callback->GetTypeInfoCount(&count));
    EXPECT_EQ(1u, count);
    EXPECT_EQ(E_POINTER, callback->GetTypeInfoCount(nullptr));
}

TEST_F(ThreadProxy, Dispatch_TypeDescriptionCannotBeLoaded) {
    ITypeInfo* info = nullptr;
    EXPECT_EQ(TYPE_E_LIBNOTREGISTERED, callback->GetTypeInfo(0, 1033, &info));
    EXPECT_EQ(nullptr, info);
    EXPECT_EQ(E_POINTER, callback->GetTypeInfo(0, 1033, nullptr));
}

TEST_F(ThreadProxy, Dispatch_OtherTypeDescriptions_AreBadIndexes) {
    for (const UINT index : {1u, 2u, 0xFFFFFFFFu}) {
        ITypeInfo* info = reinterpret_cast<ITypeInfo*>(callback.Get());
        EXPECT_EQ(DISP_E_BADINDEX, callback->GetTypeInfo(index, 1033, &info)) << index;
        EXPECT_EQ(nullptr, info);
    }
}

TEST_F(ThreadProxy, Dispatch_NamesAndCallsNeedTheTypeLibrary) {
    proxy->Set(&Owner::Count, owner);
    OLECHAR name[] = L"RunOnThread";
    LPOLESTR names[] = {name};
    DISPID id = 0;
    EXPECT_EQ(TYPE_E_LIBNOTREGISTERED, callback->GetIDsOfNames(IID_IUnknown, names, 1, 1033, &id));
    EXPECT_EQ(TYPE_E_LIBNOTREGISTERED,
              callback->Invoke(1, IID_IUnknown, 1033, 1, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(0, owner.runs);
}

} // namespace

} // namespace vant
