#pragma once

#include "platform/Bstr.h"
#include "platform/Utf8.h"
#include "platform/Variant.h"
#include "platform/system.h"

#include <string_view>

namespace vant::host {

/// Hands out an object with a reference. E_POINTER for a null `out`; HRESULT_FROM_WIN32(ERROR_NOT_FOUND),
/// null out, for a null object, which stands for one that does not exist.
template <class Object, class Interface>
HRESULT HandOut(Object* object, Interface** out) {
    if (!out)
        return E_POINTER;
    *out = object;
    if (!object)
        return HRESULT_FROM_WIN32(ERROR_NOT_FOUND);
    object->AddRef();
    return S_OK;
}

/// Hands out a string that the receiver frees; E_POINTER for a null `out`.
inline HRESULT HandOutText(std::string_view utf8, BSTR* out) {
    if (!out)
        return E_POINTER;
    *out = CComBSTR(ToWide(utf8)).Detach();
    return S_OK;
}

/// Hands out an item of a list of objects by its index, a VT_I4 that counts from 1. DISP_E_TYPEMISMATCH for
/// an index of another type, DISP_E_BADINDEX for one outside the list.
template <class List, class Interface>
HRESULT HandOutItem(const List& list, const VARIANT& index, Interface** out) {
    if (!out)
        return E_POINTER;
    *out = nullptr;
    if (index.vt != VT_I4)
        return DISP_E_TYPEMISMATCH;
    if (index.lVal < 1 || static_cast<std::size_t>(index.lVal) > list.size())
        return DISP_E_BADINDEX;
    return HandOut(list[static_cast<std::size_t>(index.lVal) - 1].get(), out);
}

} // namespace vant::host
