#pragma once

#include "ecm/interfaces/EngineData.h"
#include "host/engine/objects/FaultField.h"
#include "host/engine/objects/ItemList.h"

namespace vant::host {

/// One fault: an ordered list of named fields.
class FaultRecord final : public ItemList<IFaultRecord, IFaultField, FaultField> {
public:
    FaultRecord(Journal& journal, const FaultRecordDescription& fields)
        : ItemList(journal, "FaultRecord", fields) {}
};

} // namespace vant::host
