#include "host/services/ThreadService.h"

#include "host/record/Vocabulary.h"

namespace vant::host {

HRESULT ThreadService::UnregisterCallback(std::uint32_t cookie) {
    return Perform(operation::UnregisterCallback, [&](Record& record) {
        record.Add(argument::cookie, std::int64_t{cookie});
        return m_threads.Forget(cookie);
    });
}

HRESULT ThreadService::Operation11(std::uint32_t cookie) {
    return Perform(operation::Operation11, [&](Record& record) {
        record.Add(argument::cookie, std::int64_t{cookie});
        return m_threads.IsRunning(cookie);
    });
}

HRESULT ThreadService::Operation12(std::uint32_t cookie) {
    return Perform(operation::Operation12, [&](Record& record) {
        record.Add(argument::cookie, std::int64_t{cookie});
        return m_threads.WaitFor(cookie);
    });
}

HRESULT ThreadService::RegisterCallback(IThreadCallback* callback, const ThreadRegistration* registration,
                                        std::uint32_t* cookie) {
    return Perform(operation::RegisterCallback, [&](Record& record) -> HRESULT {
        if (!callback || !registration || !cookie)
            return E_POINTER;
        const std::wstring_view name = TextOf(registration->threadName);
        record.Add(argument::threadName, ToUtf8(name));
        const HRESULT code = m_threads.Start(*callback, name, *cookie);
        if (SUCCEEDED(code))
            record.Add(argument::cookie, std::int64_t{*cookie});
        return code;
    });
}

} // namespace vant::host
