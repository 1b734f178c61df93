#include "host/object/CallGate.h"

#include "host/record/CallScope.h"

namespace vant::host {

std::optional<HRESULT> CallGate::Intercepted(Record& call) const {
    if (!m_interceptor)
        return std::nullopt;
    call.thread = CurrentThread();
    call.command = CurrentCommand();
    return m_interceptor(call);
}

void CallGate::ShowToWatcher(Record& call) noexcept {
    if (!m_watcher)
        return;
    try {
        call.thread = CurrentThread();
        call.command = CurrentCommand();
        m_watcher(call);
    } catch (...) {
        m_journal.MarkIncomplete();
    }
}

} // namespace vant::host
