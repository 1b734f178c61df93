#pragma once

#include "framework/interfaces/ThreadService.h"
#include "host/engine/objects/EngineObjects.h"
#include "host/object/HostObject.h"
#include "host/record/Vocabulary.h"
#include "host/services/PersistentThreads.h"

namespace vant::host {

/// Runs persistent commands, each on a thread of its own. If the procedure has an engine, this COM object
/// also has the interfaces of the engine services. Any thread may call.
class ThreadService final : public HostDispatch<IThreadService> {
public:
    /// `threads` must outlive the service.
    ThreadService(CallGate& gate, PersistentThreads& threads)
        : HostDispatch(gate, service::ThreadService), m_threads(threads) {}

    /// Adds the interfaces of the engine services to this object. Before the first command.
    void SetEngine(EngineObjects& engine) noexcept { m_engine = &engine; }

    HRESULT STDMETHODCALLTYPE Reserved7() override { return NotImplemented("Reserved7"); }
    /// HRESULT_FROM_WIN32(ERROR_NOT_FOUND) for a cookie that does not exist or has been forgotten.
    HRESULT STDMETHODCALLTYPE UnregisterCallback(std::uint32_t cookie) override;
    HRESULT STDMETHODCALLTYPE Reserved9() override { return NotImplemented("Reserved9"); }
    HRESULT STDMETHODCALLTYPE Reserved10() override { return NotImplemented("Reserved10"); }
    /// S_OK while the thread of that cookie runs, S_FALSE afterwards; HRESULT_FROM_WIN32(ERROR_NOT_FOUND).
    HRESULT STDMETHODCALLTYPE Operation11(std::uint32_t cookie) override;
    /// Waits until the thread of that cookie has ended: S_OK. HRESULT_FROM_WIN32(ERROR_POSSIBLE_DEADLOCK) on
    /// that thread itself; E_ABORT if the procedure ends first; HRESULT_FROM_WIN32(ERROR_NOT_FOUND).
    HRESULT STDMETHODCALLTYPE Operation12(std::uint32_t cookie) override;
    /// Starts a thread. Cookies are counted from 1. The command at work is held until the callback has
    /// returned. E_POINTER for a null argument; E_ABORT once the procedure has begun to end;
    /// HRESULT_FROM_WIN32(ERROR_MAX_THRDS_REACHED) while maxLiveThreads run.
    HRESULT STDMETHODCALLTYPE RegisterCallback(IThreadCallback* callback,
                                               const ThreadRegistration* registration,
                                               std::uint32_t* cookie) override;

protected:
    void* FindInterface(REFIID iid) noexcept override {
        if (iid == IID_IThreadService)
            return static_cast<IThreadService*>(this);
        if (m_engine && iid == IID_IECMServicesOld)
            return static_cast<IECMServicesOld*>(&m_engine->Services());
        if (m_engine && iid == IID_IECMSessionManager)
            return static_cast<IECMSessionManager*>(&m_engine->Sessions());
        return HostDispatch::FindInterface(iid);
    }

private:
    PersistentThreads& m_threads;
    EngineObjects* m_engine = nullptr;
};

} // namespace vant::host
