#pragma once

#include "ecm/interfaces/EngineData.h"
#include "host/engine/FaultRecord.h"
#include "host/services/HandOut.h"
#include "host/services/HostObject.h"

#include <memory>
#include <vector>

namespace vant {

/// The faults of a fault array in their order.
class FaultRecordList final : public HostDispatch<IFaultRecordList> {
public:
    FaultRecordList(Journal& journal, const std::vector<FaultRecordDescription>& records)
        : HostDispatch(journal, "FaultRecordList") {
        for (const auto& each : records)
            m_records.push_back(std::make_unique<FaultRecord>(journal, each));
    }

    /// `index` is a VT_I4 and counts from 1; see HandOutItem for the refusals.
    HRESULT STDMETHODCALLTYPE get_Item(VARIANT index, IFaultRecord** out) override {
        return Answer("get_Item", [&](Record& record) {
            record.Add("index", ToValue(index));
            return HandOutItem(m_records, index, out);
        });
    }
    HRESULT STDMETHODCALLTYPE get_Count(LONG* count) override {
        return Answer("get_Count", [&](Record& record) -> HRESULT {
            if (!count)
                return E_POINTER;
            *count = static_cast<LONG>(m_records.size());
            record.Add("count", std::int64_t{*count});
            return S_OK;
        });
    }

    /// Calls `visit` with every object that this one hands out.
    template <class Visit>
    void ForEach(Visit visit) const {
        for (const auto& each : m_records) {
            visit(*each);
            each->ForEach(visit);
        }
    }

protected:
    void* FindInterface(REFIID iid) noexcept override {
        return iid == IID_IFaultRecordList ? static_cast<IFaultRecordList*>(this)
                                           : HostDispatch::FindInterface(iid);
    }

private:
    std::vector<std::unique_ptr<FaultRecord>> m_records;
};

} // namespace vant
