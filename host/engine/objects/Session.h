#pragma once

#include "ecm/interfaces/EngineData.h"
#include "host/engine/objects/SessionItem.h"
#include "host/object/HostObject.h"
#include "host/record/Vocabulary.h"

#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>

namespace vant::host {

/// The direct sessions with the control module: one object that returns a handle for each registration.
class Session final : public HostDispatch<IECMSession> {
public:
    /// By parameter id. They must outlive the session.
    using Items = std::map<std::string, std::unique_ptr<SessionItem>>;

    Session(CallGate& gate, const Items& items) : HostDispatch(gate, service::Session), m_items(items) {}

    /// Handles are counted from 1.
    HRESULT STDMETHODCALLTYPE Register(LONG* handle) override;
    HRESULT STDMETHODCALLTYPE Reserved8() override { return NotImplemented("Reserved8"); }
    HRESULT STDMETHODCALLTYPE Reserved9() override { return NotImplemented("Reserved9"); }
    HRESULT STDMETHODCALLTYPE Reserved10() override { return NotImplemented("Reserved10"); }
    /// E_UNEXPECTED while no handle is open; E_INVALIDARG for a kind other than 1;
    /// HRESULT_FROM_WIN32(ERROR_NOT_FOUND) for a parameter that does not exist.
    HRESULT STDMETHODCALLTYPE ReadParameter(LONG id, LONG kind, IECMSessionItem** item) override;

    /// Closes a handle, and returns whether it was open.
    bool Close(LONG handle);
    bool IsOpen() const;

protected:
    void* FindInterface(REFIID iid) noexcept override {
        return iid == IID_IECMSession ? static_cast<IECMSession*>(this) : HostDispatch::FindInterface(iid);
    }

private:
    const Items& m_items;
    mutable std::mutex m_access;
    std::set<LONG> m_handles;
    LONG m_lastHandle = 0;
};

} // namespace vant::host
