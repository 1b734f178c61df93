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
    CClassFactory* classObject = row->classObject.load(std::memory_order_acquire);
    if (!classObject)
        classObject = CreateClassObject(*row);
    return classObject ? classObject->QueryInterface(iid, out) : E_OUTOFMEMORY;
}

CClassFactory* CModule::CreateClassObject(ObjectMapRow& row) noexcept {
    try {
        const std::lock_guard lock(m_classObjects);
        CClassFactory* classObject = row.classObject.load(std::memory_order_relaxed);
        if (!classObject) {
            classObject = new CClassFactory(row.creator);
            classObject->AddRef();
            row.classObject.store(classObject, std::memory_order_release);
        }
        return classObject;
    } catch (...) {
        return nullptr;
    }
}

void CModule::ReleaseClassObjects() noexcept {
    for (ObjectMapRow& row : ObjectMap()) {
        if (CClassFactory* const classObject = row.classObject.exchange(nullptr))
            classObject->Release();
    }
}

} // namespace vant
