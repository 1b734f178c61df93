#pragma once

#include "ecm/interfaces/EngineData.h"
#include "host/engine/objects/FaultRecordList.h"
#include "host/object/HandOut.h"
#include "host/object/HostObject.h"
#include "host/record/Vocabulary.h"

#include <vector>

namespace vant::host {

class FaultArray final : public HostDispatch<IFaultArray> {
public:
    FaultArray(CallGate& gate, const std::vector<FaultRecordDescription>& records)
        : HostDispatch(gate, service::FaultArray), m_records(gate, records) {}

    HRESULT STDMETHODCALLTYPE Reserved7() override { return NotImplemented("Reserved7"); }
    HRESULT STDMETHODCALLTYPE get_Records(IUnknown** records) override {
        return Perform(operation::get_Records, [&](Record&) { return HandOut(&m_records, records); });
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
