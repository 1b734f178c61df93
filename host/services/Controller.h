#pragma once

#include "framework/interfaces/HostServices.h"
#include "host/object/HostObject.h"
#include "host/record/Vocabulary.h"
#include "host/services/PersistentThreads.h"

namespace vant::host {

/// Stops running commands at a command's request, and records the commands that report their stop. Any thread
/// may call.
class Controller final : public HostObject<IVantController> {
public:
    /// `threads` must outlive the controller.
    Controller(CallGate& gate, PersistentThreads& threads)
        : HostObject(gate, service::Controller), m_threads(threads) {}

    /// Calls Stop of every running command of that id, and does not wait for the commands to end.
    /// HRESULT_FROM_WIN32(ERROR_NOT_FOUND) if none runs; E_NOINTERFACE if one of them cannot be stopped.
    HRESULT STDMETHODCALLTYPE TerminateCommand(BSTR commandId) override;
    HRESULT STDMETHODCALLTYPE Reserved4() override { return NotImplemented("Reserved4"); }
    HRESULT STDMETHODCALLTYPE Reserved5() override { return NotImplemented("Reserved5"); }
    /// Records the command's id. E_POINTER for a null command; HRESULT_FROM_WIN32(ERROR_NOT_FOUND) for one
    /// that does not run.
    HRESULT STDMETHODCALLTYPE PersistentCommandStopped(IVantPersistentCommand* command) override;

private:
    PersistentThreads& m_threads;
};

} // namespace vant::host
