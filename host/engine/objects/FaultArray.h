#pragma once

#include "ecm/interfaces/EngineData.h"
#include "host/engine/objects/FaultRecordList.h"
#include "host/object/HandOut.h"
#include "host/object/HostObject.h"

#include <vector>

namespace vant::host {

class FaultArray final : public HostDispatch<IFaultArray> {
public:
    FaultArray(Journal& journal, const std::vector<FaultRecordDescription>& records)
        : HostDispatch(journal, "FaultArray"), m_records(journal, records) {}

    HRESULT STDMETHODCALLTYPE Reserved7() override { return Refuse("Reserved7"); }
    HRESULT STDMETHODCALLTYPE get_Records(IUnknown** records) override {
        return Answer("get_Records", [&](Record&) { return HandOut(&m_records, records); });
    }

    /// Calls `visit` with every object that belongs to the array.
    template <class Visit>
    void ForEach(Visit visit) const {
        visit(*this);
        visit(m_records);
        m_records.ForEach(visit);
    }

protected:
    void* FindInterface(REFIID iid) noexcept override {
        return iid == IID_IFaultArray ? static_cast<IFaultArray*>(this) : HostDispatch::FindInterface(iid);
    }

private:
    FaultRecordList m_records;
};

} // namespace vant::host
