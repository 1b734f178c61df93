#include "host/services/ParameterService.h"

#include "host/services/HandOut.h"

namespace vant {

namespace {

// What the callers' number means here.
constexpr LONG parameterKind = 1;
constexpr LONG faultArrayKind = 2;

} // namespace

HRESULT ParameterService::GetConnection(IConnectionOld** connection) {
    return Answer("GetConnection", [&](Record&) {
        return HandOut(m_engine ? &m_engine->TheConnection() : nullptr, connection);
    });
}

HRESULT ParameterService::GetParameter(BSTR id, LONG kind, IUnknown** parameter) {
    return Answer("GetParameter", [&](Record& record) -> HRESULT {
        const std::string idText = ToUtf8(TextOf(id));
        record.Add("id", idText);
        record.Add("kind", std::int64_t{kind});
        if (!parameter)
            return E_POINTER;
        *parameter = nullptr;
        if (!m_engine)
            return codeNotFound;
        if (kind == parameterKind)
            return HandOut(m_engine->FindParameter(idText), parameter);
        if (kind == faultArrayKind)
            return HandOut(m_engine->FindFaultArray(idText), parameter);
        return E_INVALIDARG;
    });
}

HRESULT ParameterService::SetParameter(BSTR id, LONG kind, VARIANT value, IUnknown** parameter) {
    return Answer("SetParameter", [&](Record& record) -> HRESULT {
        const std::string idText = ToUtf8(TextOf(id));
        record.Add("id", idText);
        record.Add("kind", std::int64_t{kind});
        record.Add("value", ToValue(value));
        if (parameter)
            *parameter = nullptr;
        if (m_closed)
            return codeAborted;
        if (!m_engine)
            return codeNotFound;
        if (kind != parameterKind)
            return E_INVALIDARG;
        const HRESULT code = m_engine->Model().Write(idText, value);
        if (FAILED(code) || !parameter)
            return code;
        return HandOut(m_engine->FindParameter(idText), parameter);
    });
}

} // namespace vant
