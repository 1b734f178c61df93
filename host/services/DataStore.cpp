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
        if (const HRESULT code = Find(TextOf(name), copy); FAILED(code))
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
        Replace(std::wstring(TextOf(name)), CComVariant::Copy(value));
        return S_OK;
    });
}

void DataStore::Set(std::string_view name, CComVariant value) {
    Replace(ToWide(name), std::move(value));
}

HRESULT DataStore::Read(std::string_view name, CComVariant& value) const {
    return Find(ToWide(name), value);
}

void DataStore::Clear() {
    std::map<std::wstring, CComVariant, std::less<>> given;
    const std::lock_guard lock(m_access);
    m_entries.swap(given);
}

HRESULT DataStore::Find(std::wstring_view name, CComVariant& value) const {
    const std::lock_guard lock(m_access);
    const auto entry = m_entries.find(name);
    if (entry == m_entries.end())
        return codeNotFound;
    value = entry->second;
    return S_OK;
}

void DataStore::Replace(std::wstring name, CComVariant value) {
    CComVariant replaced;
    const std::lock_guard lock(m_access);
    CComVariant& entry = m_entries[std::move(name)];
    replaced = std::move(entry);
    entry = std::move(value);
}

std::map<std::string, Value> DataStore::Entries() const {
    const std::lock_guard lock(m_access);
    std::map<std::string, Value> result;
    for (const auto& [name, value] : m_entries)
        result[ToUtf8(name)] = ToValue(value.Get());
    return result;
}

} // namespace vant
