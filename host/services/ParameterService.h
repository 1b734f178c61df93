#pragma once

#include "ecm/interfaces/EngineData.h"
#include "host/engine/objects/EngineObjects.h"
#include "host/object/HostObject.h"
#include "host/record/Vocabulary.h"

#include <atomic>

namespace vant::host {

/// The parameters of the engine control module. Without an engine nothing exists.
class ParameterService final : public HostDispatch<IDataServiceOld> {
public:
    /// `engine` may be null and must outlive the service.
    ParameterService(CallGate& gate, EngineObjects* engine)
        : HostDispatch(gate, service::ParameterService), m_engine(engine) {}

    HRESULT STDMETHODCALLTYPE Reserved7() override { return NotImplemented("Reserved7"); }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return NotImplemented("Reserved8"); }
    HRESULT STDMETHODCALLTYPE Reserved9() override { return NotImplemented("Reserved9"); }
    HRESULT STDMETHODCALLTYPE GetConnection(IConnectionOld** connection) override;
    HRESULT STDMETHODCALLTYPE Reserved11() override { return NotImplemented("Reserved11"); }
    /// Kind 1 gives a parameter, kind 2 a fault array: HRESULT_FROM_WIN32(ERROR_NOT_FOUND), null out, for an
    /// unknown id; E_INVALIDARG for another kind; E_POINTER for a null `parameter`.
    HRESULT STDMETHODCALLTYPE GetParameter(BSTR id, LONG kind, IUnknown** parameter) override;
    /// Writes a parameter (kind 1) and gives it, unless `parameter` is null. Refusals are those of
    /// GetParameter and of Engine::Write, and E_ABORT once closed; null out then.
    HRESULT STDMETHODCALLTYPE SetParameter(BSTR id, LONG kind, VARIANT value, IUnknown** parameter) override;

    /// From now on nothing is written. Any thread may call.
    void Close() noexcept { m_closed = true; }

private:
    EngineObjects* const m_engine;
    std::atomic<bool> m_closed{false};
};

} // namespace vant::host
