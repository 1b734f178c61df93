#pragma once

#include "ecm/interfaces/EngineData.h"
#include "host/engine/objects/Unit.h"
#include "host/object/HandOut.h"
#include "host/object/HostObject.h"
#include "host/record/Vocabulary.h"

#include <map>
#include <memory>
#include <string>

namespace vant::host {

class UnitsTable final : public HostDispatch<IUnitsTable> {
public:
    /// `units` are texts by key.
    UnitsTable(CallGate& gate, const std::map<std::string, std::string>& units)
        : HostDispatch(gate, service::UnitsTable) {
        for (const auto& [key, text] : units)
            m_units.emplace(key, std::make_unique<Unit>(gate, text));
    }

    /// HRESULT_FROM_WIN32(ERROR_NOT_FOUND) for a key that does not exist.
    HRESULT STDMETHODCALLTYPE GetUnit(BSTR unitsKey, IUnit** unit) override {
        return Perform(operation::GetUnit, [&](Record& record) {
            const std::string key = ToUtf8(TextOf(unitsKey));
            record.Add(argument::unitsKey, key);
            const auto found = m_units.find(key);
            return HandOut(found == m_units.end() ? nullptr : found->second.get(), unit);
        });
    }

    /// Calls `visit` with every unit.
    template <class Visit>
    void ForEach(Visit visit) const {
        for (const auto& [key, unit] : m_units)
            visit(*unit);
    }

private:
    std::map<std::string, std::unique_ptr<Unit>> m_units;
};

} // namespace vant::host
