#include "host/services/ParameterService.h"

#include "host/engine/objects/EngineAccess.h"
#include "host/object/HandOut.h"
#include "host/object/VariantValue.h"
#include "host/record/CallScope.h"
#include "host/record/Vocabulary.h"

namespace vant::host {

namespace {

// The kinds that commands pass as a number.
constexpr LONG parameterKind = 1;
constexpr LONG faultArrayKind = 2;

} // namespace

HRESULT ParameterService::GetConnection(IConnectionOld** connection) {
    return Perform(operation::GetConnection, [&](Record&) {
        return HandOut(m_engine ? &m_engine->TheConnection() : nullptr, connection);
    });
}

HRESULT ParameterService::GetParameter(BSTR id, LONG kind, IUnknown** parameter) {
    return Perform(operation::GetParameter, [&](Record& record) -> HRESULT {
        const std::string idText = ToUtf8(TextOf(id));
        record.Add(argument::id, idText);
        record.Add(argument::kind, std::int64_t{kind});
        if (!parameter)
            return E_POINTER;
        *parameter = nullptr;
        if (!m_engine)
            return HRESULT_FROM_WIN32(ERROR_NOT_FOUND);
        if (kind == parameterKind)
            return HandOut(m_engine->FindParameter(idText), parameter);
        if (kind == faultArrayKind)
            return HandOut(m_engine->FindFaultArray(idText), parameter);
        return E_INVALIDARG;
    });
}

HRESULT ParameterService::SetParameter(BSTR id, LONG kind, VARIANT value, IUnknown** parameter) {
    return Perform(operation::SetParameter, [&](Record& record) -> HRESULT {
        const std::string idText = ToUtf8(TextOf(id));
        record.Add(argument::id, idText);
        record.Add(argument::kind, std::int64_t{kind});
        record.Add(argument::value, ToValue(value));
        if (parameter)
            *parameter = nullptr;
        const Refusal refusal = m_refusal;
        if (refusal == Refusal::All || (refusal == Refusal::MainThread && CurrentThread() == mainThread))
            return E_ABORT;
        if (!m_engine)
            return HRESULT_FROM_WIN32(ERROR_NOT_FOUND);
        if (kind != parameterKind)
            return E_INVALIDARG;
        const HRESULT code = WriteValue(m_engine->Model(), idText, value);
        if (FAILED(code) || !parameter)
            return code;
        return HandOut(m_engine->FindParameter(idText), parameter);
    });
}

} // namespace vant::host
