#include "host/services/DataStore.h"

#include "host/services/Codes.h"

#include <utility>

namespace vant {

HRESULT DataStore::GetValue(BSTR name, VARIANT* value) {
    return Answer("GetValue", [&](Record& record) -> HRESULT {
        record.Add("name", ToUtf8(TextOf(name)));
        if (!value)
            return E_POINTER;
        CComVariant copy;
        {
            const std::lock_guard lock(m_access);
            const auto entry = m_entries.find(TextOf(name));
            if (entry == m_entries.end())
                return codeNotFound;
            copy = entry->second;
        }
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
        CComVariant copy = CComVariant::Copy(value);
        const std::lock_guard lock(m_access);
        m_entries[std::wstring(TextOf(name))] = std::move(copy);
        return S_OK;
    });
}

void DataStore::Set(std::string_view name, CComVariant value) {
    const std::lock_guard lock(m_access);
    m_entries[ToWide(name)] = std::move(value);
}

std::map<std::string, Value> DataStore::Entries() const {
    const std::lock_guard lock(m_access);
    std::map<std::string, Value> result;
    for (const auto& [name, value] : m_entries)
        result[ToUtf8(name)] = ToValue(value.Get());
    return result;
}

} // namespace vant
