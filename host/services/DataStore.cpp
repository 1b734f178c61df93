#include "host/services/DataStore.h"

#include "host/object/VariantValue.h"

namespace vant::host {

HRESULT DataStore::GetValue(BSTR name, VARIANT* value) {
    return Answer("GetValue", [&](Record& record) -> HRESULT {
        record.Add("name", ToUtf8(TextOf(name)));
        if (!value)
            return E_POINTER;
        CComVariant copy;
        if (const HRESULT code = m_values.Read(TextOf(name), copy); FAILED(code))
            return code;
        record.Add("value", ToValue(copy.Get()));
        *value = copy.Detach();
        return S_OK;
    });
}

HRESULT DataStore::SetValue(BSTR name, VARIANT value) {
    return Answer("SetValue", [&](Record& record) -> HRESULT {
        record.Add("name", ToUtf8(TextOf(name)));
        record.Add("value", ToValue(value));
        if (value.vt & VT_BYREF)
            return E_INVALIDARG;
        m_values.Set(std::wstring(TextOf(name)), CComVariant::Copy(value));
        return S_OK;
    });
}

} // namespace vant::host
