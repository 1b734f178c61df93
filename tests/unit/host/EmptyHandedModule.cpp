// A module whose class objects and commands are all null, although every call succeeds.

#include "platform/system.h"

namespace {

/// Creates nothing, successfully.
class Factory final : public IClassFactory {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** out) override {
        *out = this;
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID, void** out) override {
        *out = nullptr;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }
};

Factory factory;
int requests = 0;

} // namespace

/// Every second request returns not even a class object.
extern "C" HRESULT STDAPICALLTYPE DllGetClassObject(REFCLSID, REFIID, void** out) {
    *out = ++requests % 2 == 1 ? &factory : nullptr;
    return S_OK;
}

extern "C" HRESULT STDAPICALLTYPE DllCanUnloadNow() {
    return S_OK;
}
