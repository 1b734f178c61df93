#pragma once

#include "framework/interfaces/HostServices.h"
#include "host/object/HostObject.h"
#include "host/record/Vocabulary.h"
#include "host/services/PersistentThreads.h"

namespace vant::host {

/// Ends running commands at a command's request, and hears of those that have been stopped. Any thread may
/// call.
class Controller final : public HostObject<IVantController> {
public:
    /// `threads` must outlive the controller.
    Controller(CallGate& gate, PersistentThreads& threads)
        : HostObject(gate, service::Controller), m_threads(threads) {}

    /// Calls Stop of every running command of that id and does not wait for it to end.
    /// HRESULT_FROM_WIN32(ERROR_NOT_FOUND) where none runs; E_NOINTERFACE where one cannot be stopped.
    HRESULT STDMETHODCALLTYPE TerminateCommand(BSTR commandId) override;
    HRESULT STDMETHODCALLTYPE Reserved4() override { return NotImplemented("Reserved4"); }
    HRESULT STDMETHODCALLTYPE Reserved5() override { return NotImplemented("Reserved5"); }
    /// Recorded with the command's id. E_POINTER for a null command; HRESULT_FROM_WIN32(ERROR_NOT_FOUND) for
    /// one that is not running.
    HRESULT STDMETHODCALLTYPE PersistentCommandStopped(IVantPersistentCommand* command) override;

private:
    PersistentThreads& m_threads;
};

} // namespace vant::host
