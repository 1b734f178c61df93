#pragma once

#include "framework/interfaces/HostServices.h"
#include "tests/support/HostObject.h"

namespace vant::test {

/// A data store whose every entry is a VARIANT of the same type: by default an unknown one, which the
/// platform can neither copy nor clear. If the host's "GetValue" is to fail, it returns the failure and the
/// value. Made with new; ends with its last reference.
class StoreOfNoValue final : public HostObject<IDataStore> {
public:
    explicit StoreOfNoValue(TestHost& host, VARTYPE type = 15) : HostObject(host), m_type(type) {}

    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = HostObject::Release();
        if (left == 0)
            delete this;
        return left;
    }
    HRESULT STDMETHODCALLTYPE Reserved3() override { return Unexpected("IDataStore 3"); }
    HRESULT STDMETHODCALLTYPE Reserved4() override { return Unexpected("IDataStore 4"); }
    HRESULT STDMETHODCALLTYPE Reserved5() override { return Unexpected("IDataStore 5"); }
    HRESULT STDMETHODCALLTYPE Reserved6() override { return Unexpected("IDataStore 6"); }
    HRESULT STDMETHODCALLTYPE Reserved7() override { return Unexpected("IDataStore 7"); }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return Unexpected("IDataStore 8"); }
    HRESULT STDMETHODCALLTYPE GetValue(BSTR name, VARIANT* value) override {
        value->vt = m_type;
        value->byref = nullptr;
        return Enter("GetValue", Show(name));
    }
    HRESULT STDMETHODCALLTYPE SetValue(BSTR, VARIANT) override {
        return Unexpected("a write to the store of no value");
    }

private:
    const VARTYPE m_type;
};

} // namespace vant::test
