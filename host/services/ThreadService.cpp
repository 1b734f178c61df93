#include "host/services/ThreadService.h"

namespace vant::host {

HRESULT ThreadService::UnregisterCallback(std::uint32_t cookie) {
    return Answer("UnregisterCallback", [&](Record& record) {
        record.Add("cookie", std::int64_t{cookie});
        return m_threads.Forget(cookie);
    });
}

HRESULT ThreadService::Operation11(std::uint32_t cookie) {
    return Answer("Operation11", [&](Record& record) {
        record.Add("cookie", std::int64_t{cookie});
        return m_threads.IsRunning(cookie);
    });
}

HRESULT ThreadService::Operation12(std::uint32_t cookie) {
    return Answer("Operation12", [&](Record& record) {
        record.Add("cookie", std::int64_t{cookie});
        return m_threads.WaitFor(cookie);
    });
}

HRESULT ThreadService::RegisterCallback(IThreadCallback* callback, const ThreadRegistration* registration,
                                        std::uint32_t* cookie) {
    return Answer("RegisterCallback", [&](Record& record) -> HRESULT {
        if (!callback || !registration || !cookie)
            return E_POINTER;
        const std::wstring_view name = TextOf(registration->threadName);
        record.Add("threadName", ToUtf8(name));
        const HRESULT code = m_threads.Start(*callback, name, *cookie);
        if (SUCCEEDED(code))
            record.Add("cookie", std::int64_t{*cookie});
        return code;
    });
}

} // namespace vant::host
