#include "host/services/DataStore.h"

#include "host/object/VariantValue.h"
#include "host/record/Vocabulary.h"

namespace vant::host {

HRESULT DataStore::GetValue(BSTR name, VARIANT* value) {
    return Perform(operation::GetValue, [&](Record& record) -> HRESULT {
        record.Add(argument::name, ToUtf8(TextOf(name)));
        if (!value)
            return E_POINTER;
        CComVariant copy;
        if (const HRESULT code = m_values.Read(TextOf(name), copy); FAILED(code))
            return code;
        record.Add(argument::value, ToValue(copy.Get()));
        *value = copy.Detach();
        return S_OK;
    });
}

HRESULT DataStore::SetValue(BSTR name, VARIANT value) {
    return Perform(operation::SetValue, [&](Record& record) -> HRESULT {
        record.Add(argument::name, ToUtf8(TextOf(name)));
        record.Add(argument::value, ToValue(value));
        if (value.vt & VT_BYREF)
            return E_INVALIDARG;
        m_values.Set(std::wstring(TextOf(name)), CComVariant::Copy(value));
        return S_OK;
    });
}

} // namespace vant::host
