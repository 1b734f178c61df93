#pragma once

#include "framework/StopEvent.h"
#include "framework/StopReport.h"
#include "framework/ThreadManagement.h"
#include "framework/VantCommandImpl.h"

namespace vant {

/// A command whose body runs on a thread of the host's thread service: ExecuteCommand starts the thread and
/// returns at once. `Class` overrides ExecutePersistent. `period` is the time between two runs of the body in
/// milliseconds; 0 means a single run. A host may execute the command again while a run goes on (see
/// CStopEvent), but not on two threads at once.
///
/// GetControllingUnknown and ExecutePersistent must follow ExecuteCommand in the virtual table, so they are
/// declared before Stop, which has an entry there, too, with compilers that follow the Itanium C++ ABI.
template <class Class, const CLSID* classId, UINT resourceId, DWORD period>
class IVantPersistentCommandImpl
    : public IVantCommandImpl<Class, classId, resourceId>,
      public IVantPersistentCommand,
      public ComNonAddInThreadMgt<IVantPersistentCommandImpl<Class, classId, resourceId, period>> {
public:
    /// The object's own IUnknown; no reference is added.
    virtual IUnknown* GetControllingUnknown() { return static_cast<IVantCommand*>(this); }

protected:
    /// The body. [persistent thread]
    virtual void ExecutePersistent() = 0;

public:
    /// Any thread.
    HRESULT STDMETHODCALLTYPE Stop() final {
        m_stopEvent.Signal();
        return ReportStop(this->GetControllingUnknown(), this->ControllerOnceInitialised());
    }

protected:
    void ExecuteCommand() final {
        try {
            if (!m_threadServiceBound) {
                this->m_threadServiceRef = this->m_threadService;
                m_threadServiceBound = true;
            }
            m_stopEvent.Renew();
            CCheckedResult result;
            result = this->StartThread(callbackId, 0);
        } catch (...) {
            // The command does not run, and Execute succeeds all the same.
        }
    }

    void* FindInterface(REFIID iid) noexcept {
        return iid == IID_IVantPersistentCommand
                   ? static_cast<IVantPersistentCommand*>(this)
                   : IVantCommandImpl<Class, classId, resourceId>::FindInterface(iid);
    }

private:
    friend class ComNonAddInThreadMgt<IVantPersistentCommandImpl>;
    static constexpr std::uint32_t callbackId = 1;

    static const ThreadCallbackRow<IVantPersistentCommandImpl>* CallbackMap() {
        static const ThreadCallbackRow<IVantPersistentCommandImpl> map[] = {
            {{0, 0, 0}, &IVantPersistentCommandImpl::PersistentThreadProc, callbackId, L"Persistent Thread"},
            {{0, 0, 0}, nullptr, 0, nullptr}, // the end
        };
        return map;
    }

    DWORD PersistentThreadProc() {
        do
            ExecutePersistent();
        while (period != 0 && m_stopEvent.Wait(period) == WAIT_TIMEOUT);
        return 0;
    }

    /// Set by the first Execute and never cleared: a command that is executed before Initialize never gets a
    /// thread service.
    bool m_threadServiceBound = false;

protected:
    CStopEvent m_stopEvent;
};

} // namespace vant
