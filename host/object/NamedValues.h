#pragma once

#include "host/record/Value.h"
#include "platform/Variant.h"
#include "platform/system.h"

#include <map>
#include <mutex>
#include <string>
#include <string_view>

namespace vant::host {

/// Values by name, copied when they are set and read. Any thread may call.
class NamedValues {
public:
    /// Makes or replaces an entry.
    void Set(std::wstring name, CComVariant value);
    /// A copy of an entry's value; HRESULT_FROM_WIN32(ERROR_NOT_FOUND) if there is none.
    HRESULT Read(std::wstring_view name, CComVariant& value) const;
    /// Removes all entries and releases the objects that they hold.
    void Clear();
    /// A copy of all entries, by name in UTF-8.
    std::map<std::string, Value> All() const;

private:
    mutable std::mutex m_access;
    std::map<std::wstring, CComVariant, std::less<>> m_entries;
};

} // namespace vant::host
