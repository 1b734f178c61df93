#pragma once

#include "ecm/interfaces/EngineData.h"
#include "host/engine/FaultField.h"
#include "host/services/HandOut.h"
#include "host/services/HostObject.h"

#include <memory>
#include <vector>

namespace vant {

/// One fault: an ordered list of named fields.
class FaultRecord final : public HostDispatch<IFaultRecord> {
public:
    FaultRecord(Journal& journal, const FaultRecordDescription& fields)
        : HostDispatch(journal, "FaultRecord") {
        for (const auto& each : fields)
            m_fields.push_back(std::make_unique<FaultField>(journal, each));
    }

    /// `index` is a VT_I4 and counts from 1; see HandOutItem for the refusals.
    HRESULT STDMETHODCALLTYPE get_Item(VARIANT index, IFaultField** out) override {
        return Answer("get_Item", [&](Record& record) {
            record.Add("index", ToValue(index));
            return HandOutItem(m_fields, index, out);
        });
    }
    HRESULT STDMETHODCALLTYPE get_Count(LONG* count) override {
        return Answer("get_Count", [&](Record& record) -> HRESULT {
            if (!count)
                return E_POINTER;
            *count = static_cast<LONG>(m_fields.size());
            record.Add("count", std::int64_t{*count});
            return S_OK;
        });
    }

    /// Calls `visit` with every object that this one hands out.
    template <class Visit>
    void ForEach(Visit visit) const {
        for (const auto& each : m_fields) {
            visit(*each);
        }
    }

private:
    std::vector<std::unique_ptr<FaultField>> m_fields;
};

} // namespace vant
