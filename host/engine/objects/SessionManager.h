#pragma once

#include "ecm/interfaces/EngineData.h"
#include "host/engine/objects/Directory.h"
#include "host/engine/objects/ProtocolSource.h"
#include "host/object/HostObject.h"
#include "host/record/Vocabulary.h"

namespace vant::host {

/// Leads to direct sessions and to the kind of protocol. It forms one COM object with the engine services.
class SessionManager final : public HostDispatch<IECMSessionManager> {
public:
    /// All must outlive the manager. `identity` implements QueryInterface for the whole COM object.
    SessionManager(CallGate& gate, const EngineDescription& engine, IUnknown& identity, Directory& directory,
                   ProtocolSource& source)
        : HostDispatch(gate, service::SessionManager), m_engine(engine), m_identity(identity),
          m_directory(directory), m_source(source) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
        return m_identity.QueryInterface(iid, out);
    }
    HRESULT STDMETHODCALLTYPE Reserved7() override { return NotImplemented("Reserved7"); }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return NotImplemented("Reserved8"); }
    HRESULT STDMETHODCALLTYPE GetDirectory(IECMDirectory** directory) override {
        return Perform(operation::GetDirectory, [&](Record&) { return HandOut(&m_directory, directory); });
    }
    HRESULT STDMETHODCALLTYPE GetProtocolSource(IProtocolSource** source) override {
        return Perform(operation::GetProtocolSource, [&](Record&) {
            return HandOutStep(m_engine, ProtocolStep::GetProtocolSource, &m_source, source);
        });
    }

private:
    const EngineDescription& m_engine;
    IUnknown& m_identity;
    Directory& m_directory;
    ProtocolSource& m_source;
};

} // namespace vant::host
