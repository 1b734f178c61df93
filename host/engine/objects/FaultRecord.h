#pragma once

#include "ecm/interfaces/EngineData.h"
#include "host/engine/objects/FaultField.h"
#include "host/engine/objects/ItemList.h"
#include "host/record/Vocabulary.h"

namespace vant::host {

/// One fault: an ordered list of named fields.
class FaultRecord final : public ItemList<IFaultRecord, IFaultField, FaultField> {
public:
    FaultRecord(CallGate& gate, const FaultRecordDescription& record)
        : ItemList(gate, service::FaultRecord, MakeItems(gate, record.fields)) {}
};

} // namespace vant::host
