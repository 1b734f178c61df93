#pragma once

#include "ecm/interfaces/EngineData.h"
#include "host/engine/objects/FaultRecord.h"
#include "host/engine/objects/ItemList.h"
#include "host/record/Vocabulary.h"

namespace vant::host {

/// The faults of a fault array in their order.
class FaultRecordList final : public ItemList<IFaultRecordList, IFaultRecord, FaultRecord> {
public:
    FaultRecordList(CallGate& gate, const std::vector<FaultRecordDescription>& records)
        : ItemList(gate, service::FaultRecordList, records) {}

protected:
    void* FindInterface(REFIID iid) noexcept override {
        return iid == IID_IFaultRecordList ? static_cast<IFaultRecordList*>(this)
                                           : ItemList::FindInterface(iid);
    }
};

} // namespace vant::host
