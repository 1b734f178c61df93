#pragma once

#include "ecm/interfaces/EngineData.h"
#include "host/services/HostObject.h"

namespace vant {

/// The parameters of the engine control module. The bench has no engine, so no parameter exists.
class ParameterService final : public HostDispatch<IDataServiceOld> {
public:
    explicit ParameterService(Journal& journal) : HostDispatch(journal, "ParameterService") {}

    HRESULT STDMETHODCALLTYPE Reserved7() override { return Refuse("Reserved7"); }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return Refuse("Reserved8"); }
    HRESULT STDMETHODCALLTYPE Reserved9() override { return Refuse("Reserved9"); }
    /// There is no connection: codeNotFound, null out.
    HRESULT STDMETHODCALLTYPE GetConnection(IConnectionOld** connection) override;
    HRESULT STDMETHODCALLTYPE Reserved11() override { return Refuse("Reserved11"); }
    /// codeNotFound, null out, for every id; E_POINTER for a null `parameter`.
    HRESULT STDMETHODCALLTYPE GetParameter(BSTR id, LONG kind, IUnknown** parameter) override;
    /// As GetParameter; nothing is written.
    HRESULT STDMETHODCALLTYPE SetParameter(BSTR id, LONG kind, VARIANT value, IUnknown** parameter) override;
};

} // namespace vant
