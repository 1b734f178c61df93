#include "tests/abi/RawObject.h"

#include <utility>

namespace vant::abi {

template <int slot>
HRESULT RawObject::Trap(RawObject* self) {
    self->m_trapped.push_back(slot);
    return E_NOTIMPL;
}

template <int... slots>
void RawObject::SetTraps(std::integer_sequence<int, slots...>) {
    (Place(slots, &Trap<slots>), ...);
}

RawObject::RawObject() {
    m_table = m_slots.data();
    SetTraps(std::make_integer_sequence<int, slotCount>());
}

RawObject::RawObject(RawHost& host, const wchar_t* name, const IID* iid) : RawObject() {
    m_host = &host;
    m_name = name;
    m_iid = iid;
    Place(0, &QueryInterface);
    Place(1, &AddRef);
    Place(2, &Release);
}

void RawObject::AlsoOffers(const IID& iid, RawObject& other) {
    m_otherIid = &iid;
    m_other = &other;
}

void* RawObject::Give() noexcept {
    ++m_references;
    return this;
}

HRESULT RawObject::QueryInterface(RawObject* self, const IID* iid, void** out) {
    if (*iid == IID_IUnknown || (self->m_iid && *iid == *self->m_iid)) {
        *out = self->Give();
        return S_OK;
    }
    if (self->m_otherIid && *iid == *self->m_otherIid) {
        *out = self->m_other->Give();
        return S_OK;
    }
    *out = nullptr;
    return E_NOINTERFACE;
}

ULONG RawObject::AddRef(RawObject* self) {
    return static_cast<ULONG>(++self->m_references);
}

ULONG RawObject::Release(RawObject* self) {
    return static_cast<ULONG>(--self->m_references);
}

} // namespace vant::abi
