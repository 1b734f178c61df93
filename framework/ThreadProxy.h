#pragma once

#include "framework/DispatchImpl.h"
#include "framework/interfaces/ThreadService.h"
#include "platform/ComObject.h"

namespace vant {

class CThreadManagement;

/// The host's thread service calls it on its thread; it calls a member function of `Class`. The service owns
/// the proxy, which holds no reference to the command.
template <class Class>
class CNonAddInThreadProxy : public CComObjectRootEx<CComMultiThreadModel>,
                             public IDispatchImpl<IThreadCallback, &IID_IThreadCallback> {
public:
    using Procedure = DWORD (Class::*)();

    /// `owner` must live until the last call of the callback has returned.
    void Set(Procedure procedure, CThreadManagement& owner) noexcept {
        m_procedure = procedure;
        m_owner = &owner;
    }

    HRESULT STDMETHODCALLTYPE RunOnThread() override {
        try {
            (dynamic_cast<Class&>(*m_owner).*m_procedure)();
        } catch (...) {
            // The thread ends without a report.
        }
        return E_FAIL;
    }

private:
    Procedure m_procedure = nullptr;
    CThreadManagement* m_owner = nullptr;
};

} // namespace vant
