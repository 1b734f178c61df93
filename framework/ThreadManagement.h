#pragma once

#include "framework/ThreadProxy.h"
#include "framework/interfaces/ThreadService.h"
#include "platform/ComObject.h"
#include "platform/ComPtr.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <map>

namespace vant {

/// One row of a class's callback map: a member function to run on a thread of the host.
template <class Class>
struct ThreadCallbackRow {
    std::uint32_t settings[3];
    DWORD (Class::*procedure)();
    std::uint32_t id;
    const wchar_t* threadName;
};

/// Starts threads of the host's thread service for one command, and remembers their cookies. Holds the code
/// that is the same for all classes. [the thread that executes the command]
///
/// Slot 0 of its virtual table is the destructor, 1 to 4 are the four operations. (Compilers that follow the
/// Itanium C++ ABI give the destructor two slots.)
class CThreadManagement {
public:
    CThreadManagement() = default;
    CThreadManagement(const CThreadManagement&) = delete;
    CThreadManagement& operator=(const CThreadManagement&) = delete;
    virtual ~CThreadManagement() = default;

    // Each of the four returns E_FAIL without a thread service, else the code of the first failure or S_OK.

    /// Registers the callback with that id. Does nothing for an id that is not in the map. Throws
    /// CComErrorHandlerException if the thread service's object does not offer IThreadService.
    virtual HRESULT StartThread(std::uint32_t callbackId, std::uint32_t argument);
    /// Unregisters the callback with that id. Does nothing if none is registered.
    virtual HRESULT StopThread(std::uint32_t callbackId);
    // These two pass the cookie to the service's slots 12 and 11, but keep the registration.
    virtual HRESULT CallOperation12(std::uint32_t callbackId);
    virtual HRESULT CallOperation11(std::uint32_t callbackId);

private:
    /// One row of the map, and a new proxy for it.
    struct Callback {
        std::uint32_t settings[3] = {};
        std::uint32_t id = 0;
        const wchar_t* threadName = nullptr;
        CComPtr<IThreadCallback> proxy;
    };
    /// Fills `callback`. Its proxy stays null if the map has no such id.
    virtual HRESULT MakeCallback(std::uint32_t callbackId, Callback& callback) = 0;

    template <class Class>
    friend class ComNonAddInThreadMgt;

    /// Throws CComErrorHandlerException if the held object does not offer it.
    CComPtr<IThreadService> ThreadService() const;
    HRESULT Register(IThreadService& service, const Callback& callback, std::uint32_t argument);
    HRESULT PassCookie(std::uint32_t callbackId,
                       HRESULT (STDMETHODCALLTYPE IThreadService::*operation)(std::uint32_t), bool forget);

    /// Cookies by callback id. A second registration replaces the first cookie: the earlier thread is the one
    /// more likely to have ended.
    std::map<std::uint32_t, std::uint32_t> m_threadCookies;
    // Settings and id of the callback that was registered last.
    std::uint32_t m_threadSetting1 = 0;
    std::uint32_t m_threadSetting2 = 0;
    std::uint32_t m_threadSetting3 = 0;
    std::uint32_t m_callbackId = 0;

protected:
    CComPtr<IUnknown> m_threadServiceRef;
};

/// The same for `Class`, which derives from this and supplies `CallbackMap()`, an array of
/// ThreadCallbackRow<Class>. A row without a procedure ends it.
template <class Class>
class ComNonAddInThreadMgt : public CThreadManagement {
private:
    HRESULT MakeCallback(std::uint32_t callbackId, Callback& callback) final {
        for (const ThreadCallbackRow<Class>* row = Class::CallbackMap(); row->procedure; ++row) {
            if (row->id != callbackId)
                continue;
            using Proxy = CComObject<CNonAddInThreadProxy<Class>>;
            Proxy* proxy = nullptr;
            HRESULT code = Proxy::CreateInstance(&proxy);
            if (FAILED(code))
                return code;
            const CComPtr<IUnknown> holder(proxy);
            code = holder.QueryInterface(&callback.proxy);
            if (FAILED(code))
                return code;
            proxy->Set(row->procedure, *this);
            std::copy(std::begin(row->settings), std::end(row->settings), callback.settings);
            callback.id = row->id;
            callback.threadName = row->threadName;
            return code;
        }
        return S_OK;
    }
};

} // namespace vant
