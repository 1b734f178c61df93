#include "host/engine/objects/EngineAccess.h"

#include "host/object/VariantValue.h"
#include "host/record/Vocabulary.h"
#include "platform/Utf8.h"

#include <utility>
#include <variant>

namespace vant::host {

HRESULT CodeOf(EngineError error) noexcept {
    switch (error) {
    case EngineError::NotFound:
        return HRESULT_FROM_WIN32(ERROR_NOT_FOUND);
    case EngineError::ReadFailed:
        return HRESULT_FROM_WIN32(ERROR_READ_FAULT);
    case EngineError::ReadOnly:
        return E_ACCESSDENIED;
    case EngineError::OutOfLimits:
        return E_BOUNDS;
    default:
        return DISP_E_TYPEMISMATCH;
    }
}

HRESULT ReadValue(const Engine& engine, const std::string& id, CComVariant& value) {
    const Expected<Reading> read = engine.Read(id);
    if (const EngineError* const error = std::get_if<EngineError>(&read))
        return CodeOf(*error);
    value = ToVariant(std::get<Reading>(read).value);
    return S_OK;
}

HRESULT ReadText(const Engine& engine, const std::string& id, CComBSTR& text) {
    const Expected<Reading> read = engine.Read(id);
    if (const EngineError* const error = std::get_if<EngineError>(&read))
        return CodeOf(*error);
    const auto& [value, ownText] = std::get<Reading>(read);
    if (ownText) {
        text = CComBSTR(ToWide(*ownText));
        return S_OK;
    }
    CComVariant converted = ToVariant(value);
    const HRESULT code = converted.ChangeType(VT_BSTR, lcidEnglishUS);
    if (SUCCEEDED(code))
        text = CComBSTR::Copy(StringMember(converted.Get()));
    return code;
}

HRESULT WriteValue(Engine& engine, const std::string& id, const VARIANT& value) {
    if (value.vt & VT_BYREF)
        return E_INVALIDARG;
    const Expected<Value> kind = engine.WritableKind(id);
    if (const EngineError* const error = std::get_if<EngineError>(&kind))
        return CodeOf(*error);
    CComVariant converted = CComVariant::Copy(value);
    const VARTYPE type = ToVariant(std::get<Value>(kind)).Get().vt;
    if (const HRESULT code = converted.ChangeType(type, lcidEnglishUS); FAILED(code))
        return code;
    const std::optional<EngineError> error = engine.Write(id, ToValue(converted.Get()));
    return error ? CodeOf(*error) : S_OK;
}

HRESULT HandOutValue(const Engine& engine, const std::string& id, Record& record, VARIANT* out) {
    if (!out)
        return E_POINTER;
    const Expected<Reading> read = engine.Read(id);
    if (const EngineError* const error = std::get_if<EngineError>(&read))
        return CodeOf(*error);
    const Value& value = std::get<Reading>(read).value;
    CComVariant copy = ToVariant(value);
    record.Add(argument::value, value);
    *out = copy.Detach();
    return S_OK;
}

} // namespace vant::host
