#include "framework/ThreadManagement.h"

#include "ecm/ResultPolicy.h"
#include "framework/ResultFromCaughtException.h"
#include "platform/Bstr.h"

namespace vant {

CComPtr<IThreadService> CThreadManagement::ThreadService() const {
    CCheckedResult result;
    CComPtr<IThreadService> service;
    result = m_threadServiceRef.QueryInterface(&service);
    result = service ? S_OK : E_NOINTERFACE; // success without an object
    return service;
}

HRESULT CThreadManagement::StartThread(std::uint32_t callbackId, std::uint32_t argument) {
    if (!m_threadServiceRef)
        return E_FAIL;
    const CComPtr<IThreadService> service = ThreadService();
    try {
        CCheckedResult result;
        result = S_OK; // for an id that is not in the map
        Callback callback;
        result = MakeCallback(callbackId, callback);
        if (callback.proxy)
            result = Register(*service.Get(), callback, argument);
        return result;
    } catch (...) {
        return ResultFromCaughtException();
    }
}

HRESULT CThreadManagement::Register(IThreadService& service, const Callback& callback,
                                    std::uint32_t argument) {
    m_callbackId = callback.id;
    m_threadSetting1 = callback.settings[0];
    m_threadSetting2 = callback.settings[1];
    m_threadSetting3 = callback.settings[2];
    const CComBSTR threadName(callback.threadName);
    const CComBSTR ownerName(L"IVantPersistentCommandImpl");
    // The entry is made before the thread is: no thread may run that could not be noted.
    decltype(m_threadCookies) noted = {{m_callbackId, 0}};
    const ThreadRegistration registration = {
        callback.proxy.Get(), argument,         {m_threadSetting1, m_threadSetting2, m_threadSetting3},
        ownerName.Get(),      threadName.Get(),
    };
    const HRESULT code =
        service.RegisterCallback(callback.proxy.Get(), &registration, &noted.begin()->second);
    if (SUCCEEDED(code)) {
        m_threadCookies.erase(m_callbackId);
        m_threadCookies.merge(noted);
    }
    return code;
}

HRESULT CThreadManagement::StopThread(std::uint32_t callbackId) {
    return PassCookie(callbackId, &IThreadService::UnregisterCallback, true);
}

HRESULT CThreadManagement::CallOperation12(std::uint32_t callbackId) {
    return PassCookie(callbackId, &IThreadService::Operation12, false);
}

HRESULT CThreadManagement::CallOperation11(std::uint32_t callbackId) {
    return PassCookie(callbackId, &IThreadService::Operation11, false);
}

HRESULT CThreadManagement::PassCookie(std::uint32_t callbackId,
                                      HRESULT (STDMETHODCALLTYPE IThreadService::*operation)(std::uint32_t),
                                      bool forget) {
    if (!m_threadServiceRef)
        return E_FAIL;
    try {
        const CComPtr<IThreadService> service = ThreadService();
        const auto entry = m_threadCookies.find(callbackId);
        if (entry == m_threadCookies.end())
            return S_OK;
        CCheckedResult result;
        result = (service.Get()->*operation)(entry->second);
        if (forget)
            m_threadCookies.erase(entry);
        return result;
    } catch (...) {
        return ResultFromCaughtException();
    }
}

} // namespace vant
