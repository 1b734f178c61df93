#pragma once

#include "ecm/interfaces/EngineData.h"
#include "host/engine/objects/FaultRecord.h"
#include "host/engine/objects/ItemList.h"
#include "host/record/Vocabulary.h"

#include <utility>

namespace vant::host {

/// The faults that a fault array has at some time, in their order. It stays as it is.
class FaultRecordList final : public ItemList<IFaultRecordList, IFaultRecord, FaultRecord> {
public:
    FaultRecordList(CallGate& gate, Items records)
        : ItemList(gate, service::FaultRecordList, std::move(records)) {}

protected:
    void* FindInterface(REFIID iid) noexcept override {
        return iid == IID_IFaultRecordList ? static_cast<IFaultRecordList*>(this)
                                           : ItemList::FindInterface(iid);
    }
};

} // namespace vant::host
