#pragma once

#include "ecm/interfaces/EngineData.h"
#include "host/engine/objects/EngineObjects.h"
#include "host/object/HostObject.h"
#include "host/record/Vocabulary.h"

#include <atomic>

namespace vant::host {

/// The parameters and fault arrays of the engine control module. Without an engine there are none.
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
    /// Hands out a parameter (kind 1) or a fault array (kind 2). HRESULT_FROM_WIN32(ERROR_NOT_FOUND), null
    /// out, for an unknown id; E_INVALIDARG for another kind; E_POINTER for a null `parameter`.
    HRESULT STDMETHODCALLTYPE GetParameter(BSTR id, LONG kind, IUnknown** parameter) override;
    /// Writes a parameter (kind 1), and hands it out unless `parameter` is null. Fails, null out, like
    /// GetParameter and WriteValue, and with E_ABORT while it is refused.
    HRESULT STDMETHODCALLTYPE SetParameter(BSTR id, LONG kind, VARIANT value, IUnknown** parameter) override;

    /// From now on refuses every write, or none. Any thread may call.
    void Close() noexcept { m_refusal = Refusal::All; }
    void Open() noexcept { m_refusal = Refusal::None; }
    /// Refuses the writes of the commands that a step runs, or allows them again, unless every write is
    /// refused.
    void RefuseMainThread() noexcept { Change(Refusal::None, Refusal::MainThread); }
    void AllowMainThread() noexcept { Change(Refusal::MainThread, Refusal::None); }

private:
    /// Whose writes are refused.
    enum class Refusal { None, MainThread, All };

    void Change(Refusal from, Refusal to) noexcept { m_refusal.compare_exchange_strong(from, to); }

    EngineObjects* const m_engine;
    std::atomic<Refusal> m_refusal{Refusal::None};
};

} // namespace vant::host
