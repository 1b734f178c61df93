#include "host/object/NamedValues.h"

#include "host/object/VariantValue.h"
#include "platform/Utf8.h"

#include <utility>

namespace vant::host {

void NamedValues::Set(std::wstring name, CComVariant value) {
    CComVariant replaced; // It may be an object; it is released outside the lock.
    const std::lock_guard lock(m_access);
    CComVariant& entry = m_entries[std::move(name)];
    replaced = std::move(entry);
    entry = std::move(value);
}

HRESULT NamedValues::Read(std::wstring_view name, CComVariant& value) const {
    const std::lock_guard lock(m_access);
    const auto entry = m_entries.find(name);
    if (entry == m_entries.end())
        return HRESULT_FROM_WIN32(ERROR_NOT_FOUND);
    value = entry->second;
    return S_OK;
}

void NamedValues::Clear() {
    std::map<std::wstring, CComVariant, std::less<>> removed;
    const std::lock_guard lock(m_access);
    m_entries.swap(removed);
}

std::map<std::string, Value> NamedValues::All() const {
    const std::lock_guard lock(m_access);
    std::map<std::string, Value> result;
    for (const auto& [name, value] : m_entries)
        result[ToUtf8(name)] = ToValue(value.Get());
    return result;
}

} // namespace vant::host
