#pragma once

#include "host/engine/Engine.h"
#include "host/record/Journal.h"

#include <string>

namespace vant {

/// Reads a parameter for a caller, who clears the value, and notes what was read as "value". On failure the
/// caller's value stays as it is.
inline HRESULT HandOutValue(const Engine& engine, const std::string& id, Record& record, VARIANT* out) {
    if (!out)
        return E_POINTER;
    CComVariant read;
    const HRESULT code = engine.ReadValue(id, read);
    if (FAILED(code))
        return code;
    record.Add("value", ToValue(read.Get()));
    *out = read.Detach();
    return S_OK;
}

} // namespace vant
