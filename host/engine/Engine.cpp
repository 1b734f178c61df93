#include "host/engine/Engine.h"

#include "host/services/Codes.h"
#include "platform/Utf8.h"

#include <utility>

namespace vant {

namespace {

/// Whether a value lies within the limits. Values that are no number have none.
bool IsWithinLimits(const EngineParameter& parameter, const Value& value) {
    double number = 0;
    if (const auto* const whole = std::get_if<std::int64_t>(&value))
        number = static_cast<double>(*whole);
    else if (const auto* const real = std::get_if<double>(&value))
        number = *real;
    else
        return true;
    // What is not a number lies within no limit.
    return (!parameter.min || number >= *parameter.min) && (!parameter.max || number <= *parameter.max);
}

} // namespace

template <class Read>
HRESULT Engine::WithReadable(const std::string& id, Read read) const {
    const std::lock_guard lock(m_access);
    const auto found = m_parameters.find(id);
    if (found == m_parameters.end())
        return codeNotFound;
    return found->second.fails ? codeReadFailed : read(found->second);
}

HRESULT Engine::ReadValue(const std::string& id, CComVariant& value) const {
    return WithReadable(id, [&](const EngineParameter& parameter) {
        value = ToVariant(parameter.value);
        return S_OK;
    });
}

HRESULT Engine::ReadText(const std::string& id, CComBSTR& text) const {
    return WithReadable(id, [&](const EngineParameter& parameter) {
        if (parameter.text) {
            text = CComBSTR(ToWide(*parameter.text));
            return S_OK;
        }
        CComVariant value = ToVariant(parameter.value);
        const HRESULT code = value.ChangeType(VT_BSTR, lcidEnglishUS);
        if (SUCCEEDED(code))
            text = CComBSTR::Copy(StringMember(value.Get()));
        return code;
    });
}

HRESULT Engine::Write(const std::string& id, const VARIANT& value) {
    if (value.vt & VT_BYREF)
        return E_INVALIDARG;
    const std::lock_guard lock(m_access);
    const auto found = m_parameters.find(id);
    if (found == m_parameters.end())
        return codeNotFound;
    EngineParameter& parameter = found->second;
    if (parameter.readOnly)
        return E_ACCESSDENIED;
    CComVariant converted = CComVariant::Copy(value);
    if (const HRESULT code = converted.ChangeType(ToVariant(parameter.value).Get().vt, lcidEnglishUS);
        FAILED(code))
        return code;
    Value written = ToValue(converted.Get());
    if (!IsWithinLimits(parameter, written))
        return codeOutOfLimits;
    parameter.value = std::move(written);
    parameter.text.reset();
    return S_OK;
}

} // namespace vant
