#pragma once

#include "host/engine/model/Engine.h"
#include "host/record/Journal.h"
#include "platform/Bstr.h"
#include "platform/Variant.h"
#include "platform/system.h"

#include <string>

namespace vant::host {

// The simulated engine as COM callers see it, with VARIANTs, strings and result codes. Values are converted
// under locale 1033. Any thread may call.

/// HRESULT_FROM_WIN32(ERROR_NOT_FOUND), HRESULT_FROM_WIN32(ERROR_READ_FAULT), E_ACCESSDENIED,
/// DISP_E_TYPEMISMATCH or E_BOUNDS, in the order of EngineError.
HRESULT CodeOf(EngineError error) noexcept;

/// The current value of a parameter, with the parameter's type.
HRESULT ReadValue(const Engine& engine, const std::string& id, CComVariant& value);

/// The current value of a parameter as text.
HRESULT ReadText(const Engine& engine, const std::string& id, CComBSTR& text);

/// Converts a copy of `value` to the parameter's type and writes it. Besides the codes of the engine's
/// errors, E_INVALIDARG for a value by reference, and the DISP_E_ code of a conversion that fails.
HRESULT WriteValue(Engine& engine, const std::string& id, const VARIANT& value);

/// Reads a parameter into `out`, which the caller clears, and adds the value to the record. On failure `*out`
/// stays as it is. E_POINTER for a null `out`.
HRESULT HandOutValue(const Engine& engine, const std::string& id, Record& record, VARIANT* out);

} // namespace vant::host
