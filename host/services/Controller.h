#pragma once

#include "framework/interfaces/HostServices.h"
#include "host/services/HostObject.h"

namespace vant {

/// Ends running commands at a command's request. A command runs on beyond its Execute only on the thread
/// service, where nothing is registered, so there is never one to end.
class Controller final : public HostObject<IVantController> {
public:
    explicit Controller(Journal& journal) : HostObject(journal, "Controller") {}

    /// codeNotFound: no command of that id is running.
    HRESULT STDMETHODCALLTYPE TerminateCommand(BSTR commandId) override;
    HRESULT STDMETHODCALLTYPE Reserved4() override { return Refuse("Reserved4"); }
    HRESULT STDMETHODCALLTYPE Reserved5() override { return Refuse("Reserved5"); }
    /// E_POINTER for a null command, else codeNotFound: the command was never running.
    HRESULT STDMETHODCALLTYPE PersistentCommandStopped(IVantPersistentCommand* command) override;
};

} // namespace vant
