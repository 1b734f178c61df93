#pragma once

#include "framework/interfaces/HostServices.h"
#include "host/object/HostObject.h"
#include "host/object/NamedValues.h"
#include "host/record/Vocabulary.h"

namespace vant::host {

/// The named values of one run. Values are copied when they are set and read. Any thread may call.
class DataStore final : public HostObject<IDataStore> {
public:
    /// `values` must outlive the store.
    DataStore(CallGate& gate, NamedValues& values) : HostObject(gate, service::DataStore), m_values(values) {}

    HRESULT STDMETHODCALLTYPE Reserved3() override { return NotImplemented("Reserved3"); }
    HRESULT STDMETHODCALLTYPE Reserved4() override { return NotImplemented("Reserved4"); }
    HRESULT STDMETHODCALLTYPE Reserved5() override { return NotImplemented("Reserved5"); }
    HRESULT STDMETHODCALLTYPE Reserved6() override { return NotImplemented("Reserved6"); }
    HRESULT STDMETHODCALLTYPE Reserved7() override { return NotImplemented("Reserved7"); }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return NotImplemented("Reserved8"); }
    /// E_POINTER for a null `value`; HRESULT_FROM_WIN32(ERROR_NOT_FOUND), and `*value` stays as it is, for an
    /// entry that does not exist.
    HRESULT STDMETHODCALLTYPE GetValue(BSTR name, VARIANT* value) override;
    /// Makes the entry, or replaces its value. E_INVALIDARG for a value by reference (VT_BYREF), whose target
    /// the store could not keep.
    HRESULT STDMETHODCALLTYPE SetValue(BSTR name, VARIANT value) override;

private:
    NamedValues& m_values;
};

} // namespace vant::host
