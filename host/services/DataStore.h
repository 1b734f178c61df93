#pragma once

#include "framework/interfaces/HostServices.h"
#include "host/record/Value.h"
#include "host/services/HostObject.h"
#include "platform/Variant.h"

#include <map>
#include <mutex>
#include <string>
#include <string_view>

namespace vant {

/// The named values of one run. Values go in and out as copies. Any thread may call.
class DataStore final : public HostObject<IDataStore> {
public:
    explicit DataStore(Journal& journal) : HostObject(journal, "DataStore") {}

    HRESULT STDMETHODCALLTYPE Reserved3() override { return Refuse("Reserved3"); }
    HRESULT STDMETHODCALLTYPE Reserved4() override { return Refuse("Reserved4"); }
    HRESULT STDMETHODCALLTYPE Reserved5() override { return Refuse("Reserved5"); }
    HRESULT STDMETHODCALLTYPE Reserved6() override { return Refuse("Reserved6"); }
    HRESULT STDMETHODCALLTYPE Reserved7() override { return Refuse("Reserved7"); }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return Refuse("Reserved8"); }
    /// E_POINTER for a null `value`; codeNotFound, and `value` stays VT_EMPTY, for an entry that does not
    /// exist.
    HRESULT STDMETHODCALLTYPE GetValue(BSTR name, VARIANT* value) override;
    /// Makes the entry, or replaces its value. E_INVALIDARG for a value by reference (VT_BYREF), whose target
    /// the store could not keep.
    HRESULT STDMETHODCALLTYPE SetValue(BSTR name, VARIANT value) override;

    /// Makes or replaces an entry on the host's own account; not recorded.
    void Set(std::string_view name, CComVariant value);
    /// A copy of an entry's value, on the host's own account; not recorded. codeNotFound.
    HRESULT Read(std::string_view name, CComVariant& value) const;
    /// Gives up all entries, and the objects that they hold.
    void Clear();
    /// A copy of all entries, by name in UTF-8.
    std::map<std::string, Value> Entries() const;

private:
    HRESULT Find(std::wstring_view name, CComVariant& value) const;
    /// The value that it replaces, which may be an object, is released outside the lock.
    void Replace(std::wstring name, CComVariant value);

    mutable std::mutex m_access;
    std::map<std::wstring, CComVariant, std::less<>> m_entries;
};

} // namespace vant
