#pragma once

#include "module/ClassFactory.h"
#include "platform/system.h"

#include <atomic>
#include <mutex>
#include <span>

namespace vant {

/// One class of the module: how to create its objects, and its class object after the first request.
struct ObjectMapRow {
    const CLSID* classId;
    UINT resource; ///< the number of its registration script
    ObjectCreator creator;
    std::atomic<CClassFactory*> classObject{nullptr};
};

/// All classes of the module, in the order of their resource numbers.
std::span<ObjectMapRow> ObjectMap() noexcept;

/// What the entry points do. One object per loaded module; any thread.
class CModule {
public:
    HRESULT GetClassObject(REFCLSID classId, REFIID iid, void** out) noexcept;
    /// Releases the cached class objects; at process detach only.
    void ReleaseClassObjects() noexcept;

private:
    /// The row's class object, created if it does not exist yet; null without memory.
    CClassFactory* CreateClassObject(ObjectMapRow& row) noexcept;

    std::mutex m_classObjects; // serialises their creation
};

CModule& Module() noexcept;

} // namespace vant
