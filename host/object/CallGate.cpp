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

} // namespace vant::host
