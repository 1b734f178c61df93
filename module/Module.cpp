#include "module/Module.h"

#include <algorithm>
#include <new>

namespace vant {

namespace {
CModule module;
}

CModule& Module() noexcept {
    return module;
}

HRESULT CModule::GetClassObject(REFCLSID classId, REFIID iid, void** out) noexcept {
    if (!out)
        return E_POINTER;
    *out = nullptr;
    const auto map = ObjectMap();
    const auto row = std::find_if(map.begin(), map.end(),
                                  [&classId](const ObjectMapRow& each) { return *each.classId == classId; });
    if (row == map.end())
        return CLASS_E_CLASSNOTAVAILABLE;
    if (!row->classObject.load(std::memory_order_acquire)) {
        if (const HRESULT code = CreateClassObject(*row); FAILED(code))
            return code;
    }
    return row->classObject.load(std::memory_order_acquire)->QueryInterface(iid, out);
}

HRESULT CModule::CreateClassObject(ObjectMapRow& row) noexcept {
    try {
        const std::lock_guard lock(m_classObjects);
        if (!row.classObject.load(std::memory_order_relaxed)) {
            auto* const created = new CClassFactory(row.creator);
            created->AddRef();
            row.classObject.store(created, std::memory_order_release);
        }
        return S_OK;
    } catch (...) {
        return E_OUTOFMEMORY;
    }
}

void CModule::ReleaseClassObjects() noexcept {
    for (ObjectMapRow& row : ObjectMap()) {
        if (CClassFactory* const classObject = row.classObject.exchange(nullptr))
            classObject->Release();
    }
}

} // namespace vant
