#pragma once

#include "ecm/interfaces/EngineData.h"
#include "host/engine/FaultField.h"
#include "host/engine/ItemList.h"

namespace vant {

/// One fault: an ordered list of named fields.
class FaultRecord final : public ItemList<IFaultRecord, IFaultField, FaultField> {
public:
    FaultRecord(Journal& journal, const FaultRecordDescription& fields)
        : ItemList(journal, "FaultRecord", fields) {}
};

} // namespace vant
