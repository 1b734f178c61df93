// What a host sees that asks for unloading at an awkward moment.

#include "framework/interfaces/ClassIds.h"
#include "framework/interfaces/HostServices.h"
#include "tests/module/BuiltModule.h"
#include "tests/support/TestHost.h"

#include <gtest/gtest.h>

namespace vant {
namespace {

/// Asks, each time a command lets go of it, whether the module may be unloaded.
class AskingController final : public IVantController {
public:
    explicit AskingController(const BuiltModule& module) : m_module(module) {}

    HRESULT result = E_FAIL;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** out) override {
        *out = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override {
        result = m_module.CanUnloadNow();
        return 1;
    }
    HRESULT STDMETHODCALLTYPE TerminateCommand(BSTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved4() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved5() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE PersistentCommandStopped(IVantPersistentCommand*) override { return E_NOTIMPL; }

private:
    const BuiltModule& m_module;
};

TEST(Unload, CommandThatIsBeingDestroyed_KeepsTheModuleLoaded) {
    const BuiltModule module;
    AskingController controller(module);
    test::TestHost host;
    CComPtr<IVantCommand> command;
    ASSERT_EQ(module.Create(CLSID_Calculator, IID_IVantCommand, reinterpret_cast<void**>(&command)), S_OK);
    ASSERT_EQ(command->Initialize(host.Context(), &controller), S_OK);
    command.Release();
    EXPECT_EQ(controller.result, S_FALSE);
    EXPECT_EQ(module.CanUnloadNow(), S_OK);
}

} // namespace
} // namespace vant
