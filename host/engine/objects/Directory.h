#pragma once

#include "ecm/interfaces/EngineData.h"
#include "host/engine/objects/Session.h"
#include "host/object/HandOut.h"
#include "host/object/HostObject.h"
#include "host/record/Vocabulary.h"

namespace vant::host {

/// Opens the engine's only control module.
class Directory final : public HostDispatch<IECMDirectory> {
public:
    /// The session must outlive the directory.
    Directory(CallGate& gate, LONG ecmId, Session& session)
        : HostDispatch(gate, service::Directory), m_ecmId(ecmId), m_session(session) {}

    HRESULT STDMETHODCALLTYPE Reserved7() override { return NotImplemented("Reserved7"); }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return NotImplemented("Reserved8"); }
    /// HRESULT_FROM_WIN32(ERROR_NOT_FOUND) for another control module.
    HRESULT STDMETHODCALLTYPE OpenECM(LONG ecmId, IUnknown** ecm) override {
        return Perform(operation::OpenECM, [&](Record& record) {
            record.Add(argument::ecmId, std::int64_t{ecmId});
            return HandOut(ecmId == m_ecmId ? &m_session : nullptr, ecm);
        });
    }
    /// HRESULT_FROM_WIN32(ERROR_NOT_FOUND) for a handle that is not open.
    HRESULT STDMETHODCALLTYPE CloseECM(LONG handle) override {
        return Perform(operation::CloseECM, [&](Record& record) {
            record.Add(argument::handle, std::int64_t{handle});
            return m_session.Close(handle) ? S_OK : HRESULT_FROM_WIN32(ERROR_NOT_FOUND);
        });
    }

private:
    const LONG m_ecmId;
    Session& m_session;
};

} // namespace vant::host
