#pragma once

#include "framework/VantPersistentCommandImpl.h"
#include "framework/interfaces/VantCommand.h"
#include "platform/ComObject.h"
#include "tests/support/Commands.h"
#include "tests/support/HostThreads.h"

#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace vant::test {

inline constexpr CLSID CLSID_PersistentProbe = {
    0x7A1D2B0C, 0x52E4, 0x4E0B, {0x8C, 0x2F, 0x31, 0x9A, 0x64, 0x07, 0x5B, 0x02}};

/// A persistent command whose body is given by the test.
template <DWORD period>
class CPersistentProbe
    : public CComObjectRootEx<CComMultiThreadModel>,
      public CComCoClass<CPersistentProbe<period>, &CLSID_PersistentProbe>,
      public IVantPersistentCommandImpl<CPersistentProbe<period>, &CLSID_PersistentProbe, 998, period> {
public:
    static constexpr PropertyRow properties[] = {{L"value", nullptr, false}};

    std::function<void()> body = [] {};
    int runs = 0;

    using CThreadManagement::m_threadServiceRef;

    DWORD WaitForStop(DWORD milliseconds) { return this->m_stopEvent.Wait(milliseconds); }

protected:
    void ExecutePersistent() override {
        ++runs;
        body();
    }
};

/// A host and a persistent command with that period. The command goes before the host does.
template <DWORD period>
class WithPersistentProbe : public ::testing::Test {
protected:
    using Calls = std::vector<std::string>;

    WithPersistentProbe() {
        EXPECT_EQ(S_OK, command->Initialize(host.Context(), host.Controller()));
        host.ForgetCalls();
    }
    ~WithPersistentProbe() override { host.Threads().ReleaseCallbacks(); }

    HRESULT Execute() { return command->Execute(); }
    HRESULT Stop() { return probe->Stop(); }

    TestHost host;
    CComPtr<IVantCommand> command = CreateCommand<CPersistentProbe<period>>();
    CPersistentProbe<period>* probe = static_cast<CPersistentProbe<period>*>(command.Get());
};

} // namespace vant::test
