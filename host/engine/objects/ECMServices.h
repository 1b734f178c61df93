#pragma once

#include "ecm/interfaces/EngineData.h"
#include "host/engine/objects/UnitsTable.h"
#include "host/object/HandOut.h"
#include "host/object/HostObject.h"
#include "host/record/Vocabulary.h"

namespace vant::host {

/// The engine services. They form one COM object with the thread service.
class ECMServices final : public HostDispatch<IECMServicesOld> {
public:
    /// All must outlive the services. `identity` implements QueryInterface for the whole COM object.
    ECMServices(CallGate& gate, IUnknown& identity, UnitsTable& units)
        : HostDispatch(gate, service::ECMServices), m_identity(identity), m_units(units) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
        return m_identity.QueryInterface(iid, out);
    }
    HRESULT STDMETHODCALLTYPE Reserved7() override { return NotImplemented("Reserved7"); }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return NotImplemented("Reserved8"); }
    HRESULT STDMETHODCALLTYPE Reserved9() override { return NotImplemented("Reserved9"); }
    HRESULT STDMETHODCALLTYPE Reserved10() override { return NotImplemented("Reserved10"); }
    HRESULT STDMETHODCALLTYPE Reserved11() override { return NotImplemented("Reserved11"); }
    HRESULT STDMETHODCALLTYPE GetUnits(IUnknown** unitsTable) override {
        return Perform(operation::GetUnits, [&](Record&) { return HandOut(&m_units, unitsTable); });
    }

private:
    IUnknown& m_identity;
    UnitsTable& m_units;
};

} // namespace vant::host
