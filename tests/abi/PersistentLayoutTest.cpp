// How a persistent command lies in memory: its virtual tables and the order of its members.

#include "framework/VantPersistentCommandImpl.h"
#include "framework/interfaces/ClassIds.h"
#include "platform/ComObject.h"
#include "tests/abi/RawHost.h"

#include <gtest/gtest.h>
#include <memory>
#include <tuple>
#include <vector>

namespace vant::abi {

namespace {

using Calls = std::vector<std::wstring>;

// Compilers that follow the Itanium C++ ABI enter a destructor twice in the table.
constexpr int extraDestructorEntry = 1;

class CLayoutProbe : public CComObjectRootEx<CComMultiThreadModel>,
                     public CComCoClass<CLayoutProbe, &CLSID_Timer>,
                     public IVantPersistentCommandImpl<CLayoutProbe, &CLSID_Timer, 111, 0> {
public:
    static constexpr PropertyRow properties[] = {{L"value", nullptr, false}};

    int runs = 0;

    using CThreadManagement::m_threadServiceRef;
    using CVantCommandBase::m_properties;
    using CVantCommandBase::m_threadService;
    using IVantPersistentCommandImpl::m_stopEvent;

protected:
    void ExecutePersistent() override { ++runs; }
};

class PersistentLayout : public testing::Test {
protected:
    PersistentLayout() {
        CComObject<CLayoutProbe>::CreateInstance(&probe);
        command = CComPtr<IVantCommand>(probe);
    }
    ~PersistentLayout() override { host.ReleaseCallbacks(); }

    RawHost host;
    CComObject<CLayoutProbe>* probe = nullptr;
    CComPtr<IVantCommand> command;
};

TEST_F(PersistentLayout, ControllingUnknownAndBody_FollowExecuteCommandInTheTable) {
    constexpr int controllingUnknown = 11 + extraDestructorEntry;
    constexpr int body = 12 + extraDestructorEntry;
    EXPECT_EQ(CallSlot<void*>(command.Get(), controllingUnknown), static_cast<void*>(command.Get()));
    EXPECT_EQ(probe->runs, 0);
    CallSlot<void>(command.Get(), body);
    EXPECT_EQ(probe->runs, 1);
}

TEST_F(PersistentLayout, ThreadManagement_HasItsOwnTableWithTheFourOperationsAfterTheDestructor) {
    CThreadManagement* const management = probe;
    EXPECT_NE(static_cast<void*>(management), static_cast<void*>(command.Get()));
    constexpr int start = 1 + extraDestructorEntry;
    for (int operation = start; operation < start + 4; ++operation)
        EXPECT_EQ(CallSlot<HRESULT>(management, operation, std::uint32_t{1}, std::uint32_t{0}), E_FAIL)
            << "without a thread service";
    probe->m_threadServiceRef = reinterpret_cast<IUnknown*>(&host.threadService);
    EXPECT_EQ(CallSlot<HRESULT>(management, start, std::uint32_t{1}, std::uint32_t{9}), S_OK);
    EXPECT_EQ(CallSlot<HRESULT>(management, start + 2, std::uint32_t{1}), S_OK);
    EXPECT_EQ(CallSlot<HRESULT>(management, start + 3, std::uint32_t{1}), S_OK);
    EXPECT_EQ(CallSlot<HRESULT>(management, start + 1, std::uint32_t{1}), S_OK);
    EXPECT_EQ(CallSlot<HRESULT>(management, start + 1, std::uint32_t{1}), S_OK) << "nothing is left to stop";
    EXPECT_EQ(host.calls,
              (Calls{L"threadService 13(callback, 9, 0, 0, 0, IVantPersistentCommandImpl, Persistent Thread)",
                     L"threadService 12(7)", L"threadService 11(7)", L"threadService 8(7)"}));
    EXPECT_EQ(host.Trapped(), Calls());
}

TEST_F(PersistentLayout, ThreadManagement_ItsDestructorDestroysTheWholeCommand) {
    const LONG before = ModuleLock::Count();
    CThreadManagement* const management = probe;
    std::ignore = command.Detach(); // its reference goes with it
    delete management;
    EXPECT_EQ(ModuleLock::Count(), before - 1);
}

TEST_F(PersistentLayout, Members_AreInTheirOrder) {
    const std::vector<const void*> addresses = {
        static_cast<IVantCommand*>(probe),
        std::addressof(probe->m_threadService),
        &probe->m_properties,
        static_cast<IVantPersistentCommand*>(probe),
        static_cast<CThreadManagement*>(probe),
        std::addressof(probe->m_threadServiceRef),
        &probe->m_stopEvent,
    };
    for (std::size_t i = 1; i < addresses.size(); ++i)
        EXPECT_LT(addresses[i - 1], addresses[i]) << "member " << i;
}

} // namespace

} // namespace vant::abi
