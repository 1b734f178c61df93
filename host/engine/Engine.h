#pragma once

#include "host/engine/EngineDescription.h"
#include "platform/Bstr.h"
#include "platform/Variant.h"

#include <map>
#include <mutex>
#include <string>

namespace vant {

/// The parameters of a simulated engine as they change during a run. Any thread may call. Ids in UTF-8; an id
/// that does not exist is answered with codeNotFound.
class Engine {
public:
    explicit Engine(const std::map<std::string, EngineParameter>& parameters) : m_parameters(parameters) {}

    /// The current value, with the parameter's type; codeReadFailed where reads fail.
    HRESULT ReadValue(const std::string& id, CComVariant& value) const;
    /// The current value as text; codeReadFailed where reads fail.
    HRESULT ReadText(const std::string& id, CComBSTR& text) const;
    /// Converts a copy of `value` to the parameter's type under locale 1033 and makes it the value; the text
    /// follows. Otherwise the parameter stays as it was: E_ACCESSDENIED for one that is read-only, the
    /// conversion's DISP_E_ code where it fails, codeOutOfLimits, E_INVALIDARG for a value by reference.
    HRESULT Write(const std::string& id, const VARIANT& value);

private:
    /// Calls `read` with the parameter and answers its result.
    template <class Read>
    HRESULT WithReadable(const std::string& id, Read read) const;

    mutable std::mutex m_access;
    std::map<std::string, EngineParameter> m_parameters;
};

} // namespace vant
