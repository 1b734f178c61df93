#include "host/suite/FaultInjection.h"

#include "host/record/Vocabulary.h"

#include <algorithm>
#include <string>

namespace vant::host {

std::optional<HRESULT> FailingCall::operator()(const Record& call) {
    if (m_fault.kind != Fault::Kind::Call || call.thread != m_fault.thread ||
        call.command != m_fault.command || call.service + ' ' + call.operation != m_fault.subject ||
        ++m_count != m_fault.number)
        return std::nullopt;
    m_hasHappened = true;
    return E_FAIL;
}

bool FailingCall::LeavesSessionOpen() const {
    return m_fault.subject == std::string(service::Directory) + ' ' + operation::CloseECM;
}

void Break(EngineDescription& engine, const Fault& fault) {
    if (fault.kind == Fault::Kind::Call)
        return;
    EngineParameter& parameter = engine.parameters.at(fault.subject);
    if (fault.kind == Fault::Kind::Refused) {
        parameter.readOnly = true;
        return;
    }
    const std::int64_t from = parameter.outage ? std::min(parameter.outage->from, fault.from) : fault.from;
    parameter.outage = Outage{from, std::nullopt};
}

} // namespace vant::host
