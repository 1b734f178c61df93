#include "host/services/ParameterService.h"

#include "host/services/Codes.h"

namespace vant {

namespace {

template <class Interface>
HRESULT NothingFound(Interface** out) {
    if (!out)
        return E_POINTER;
    *out = nullptr;
    return codeNotFound;
}

} // namespace

HRESULT ParameterService::GetConnection(IConnectionOld** connection) {
    return Answer("GetConnection", [&](Record&) { return NothingFound(connection); });
}

HRESULT ParameterService::GetParameter(BSTR id, LONG kind, IUnknown** parameter) {
    return Answer("GetParameter", [&](Record& record) {
        record.Add("id", ToUtf8(TextOf(id)));
        record.Add("kind", std::int64_t{kind});
        return NothingFound(parameter);
    });
}

HRESULT ParameterService::SetParameter(BSTR id, LONG kind, VARIANT value, IUnknown** parameter) {
    return Answer("SetParameter", [&](Record& record) {
        record.Add("id", ToUtf8(TextOf(id)));
        record.Add("kind", std::int64_t{kind});
        record.Add("value", ToValue(value));
        return NothingFound(parameter);
    });
}

} // namespace vant
