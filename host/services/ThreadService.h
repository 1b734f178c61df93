#pragma once

#include "host/engine/EngineObjects.h"
#include "host/services/HostObject.h"

namespace vant {

/// Stands where commands expect the thread service. No class of the module keeps running on a thread yet, so
/// nothing can be registered. Where the procedure has an engine, this COM object answers the interfaces of
/// the engine services, too; otherwise IUnknown alone.
class ThreadService final : public HostObject<IUnknown> {
public:
    explicit ThreadService(Journal& journal) : HostObject(journal, "ThreadService") {}

    /// From now on the object answers for the engine's services. Before the first command.
    void SetEngine(EngineObjects& engine) noexcept { m_engine = &engine; }

protected:
    void* FindInterface(REFIID iid) noexcept override {
        if (m_engine && (iid == IID_IECMServicesOld || iid == IID_IDispatch))
            return static_cast<IECMServicesOld*>(&m_engine->Services());
        if (m_engine && iid == IID_IECMSessionManager)
            return static_cast<IECMSessionManager*>(&m_engine->Sessions());
        return HostObject::FindInterface(iid);
    }

private:
    EngineObjects* m_engine = nullptr;
};

} // namespace vant
