#pragma once

#include "framework/StopEvent.h"
#include "framework/StopReport.h"
#include "framework/ThreadManagement.h"
#include "framework/VantCommandImpl.h"

namespace vant {

/// A command whose body runs on a thread of the host's thread service: ExecuteCommand has the thread started
/// and returns at once. `Class` overrides ExecutePersistent; `period` is the time between two runs of the
/// body in milliseconds, 0 for one run alone. A host may execute the command again, also while a run goes on
/// (see CStopEvent), but not on two threads at once.
///
/// GetControllingUnknown and ExecutePersistent follow ExecuteCommand in the virtual table, so they are
/// declared first: compilers that follow the Itanium C++ ABI give Stop an entry there, too.
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
        return ReportStop(this->GetControllingUnknown(), this->m_controller.Get());
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
            // The command does not run, and never stops by itself.
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

    /// Set by the first Execute and never cleared: a command that was executed before Initialize stays
    /// without a thread service.
    bool m_threadServiceBound = false;

protected:
    CStopEvent m_stopEvent;
};

} // namespace vant
