#include "host/engine/objects/FaultArray.h"

#include "host/object/HandOut.h"

#include <utility>

namespace vant::host {

FaultArray::FaultArray(CallGate& gate, const Engine& engine, std::string id,
                       const std::vector<FaultRecordDescription>& records)
    : HostDispatch(gate, service::FaultArray), m_gate(gate), m_engine(engine), m_id(std::move(id)) {
    for (const FaultRecordDescription& each : records)
        m_records.push_back(std::make_shared<FaultRecord>(gate, each));
}

HRESULT FaultArray::get_Records(IUnknown** records) {
    return Perform(operation::get_Records, [&](Record&) {
        return HandOut(records ? &ListOf(m_engine.FaultRecords(m_id)) : nullptr, records);
    });
}

FaultRecordList& FaultArray::ListOf(const std::vector<std::size_t>& places) {
    const std::lock_guard lock(m_access);
    const auto found = m_lists.find(places);
    if (found != m_lists.end())
        return *found->second;
    FaultRecordList::Items records;
    for (const std::size_t place : places)
        records.push_back(m_records[place]);
    auto list = std::make_unique<FaultRecordList>(m_gate, std::move(records));
    return *m_lists.emplace(places, std::move(list)).first->second;
}

} // namespace vant::host
