#pragma once

#include "ecm/interfaces/EngineData.h"
#include "host/engine/model/Engine.h"
#include "host/engine/objects/FaultRecordList.h"
#include "host/object/HostObject.h"
#include "host/record/Vocabulary.h"

#include <cstddef>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace vant::host {

/// A fault array of the engine. Each call of get_Records returns the records that are present then.
class FaultArray final : public HostDispatch<IFaultArray> {
public:
    /// The engine must outlive the object and have the array `id` with these records.
    FaultArray(CallGate& gate, const Engine& engine, std::string id,
               const std::vector<FaultRecordDescription>& records);

    HRESULT STDMETHODCALLTYPE Reserved7() override { return NotImplemented("Reserved7"); }
    HRESULT STDMETHODCALLTYPE get_Records(IUnknown** records) override;

    /// Calls `visit` with every object that belongs to the array.
    template <class Visit>
    void ForEach(Visit visit) const {
        visit(*this);
        const std::lock_guard lock(m_access);
        for (const auto& [places, list] : m_lists)
            visit(*list);
        for (const auto& record : m_records) {
            visit(*record);
            record->ForEach(visit);
        }
    }

protected:
    void* FindInterface(REFIID iid) noexcept override {
        return iid == IID_IFaultArray ? static_cast<IFaultArray*>(this) : HostDispatch::FindInterface(iid);
    }

private:
    /// The list of the records at those places of m_records.
    FaultRecordList& ListOf(const std::vector<std::size_t>& places);

    CallGate& m_gate;
    const Engine& m_engine;
    const std::string m_id;
    FaultRecordList::Items m_records;
    mutable std::mutex m_access;
    /// Commands may hold a list for as long as they like: each one is kept, and used again for the same
    /// records.
    std::map<std::vector<std::size_t>, std::unique_ptr<FaultRecordList>> m_lists;
};

} // namespace vant::host
