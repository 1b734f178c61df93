#pragma once

#include "framework/interfaces/VantCommand.h"
#include "platform/ComPtr.h"

#include <string_view>

namespace vant::host {

/// Creates commands by class name.
class CommandFactory {
public:
    virtual ~CommandFactory() = default;

    /// Creates a command of that class. CLASS_E_CLASSNOTAVAILABLE for a class that does not exist,
    /// E_UNEXPECTED if a module returns success and no object. Any thread may call.
    virtual HRESULT Create(std::string_view className, CComPtr<IVantCommand>& command) const = 0;

    /// False if commands, or locks of their module, are known to be left.
    virtual bool CanUnload() const = 0;

protected:
    /// The result of a creation, whatever the module makes of it.
    static HRESULT CheckGiven(HRESULT code, const CComPtr<IVantCommand>& command) noexcept {
        return SUCCEEDED(code) && !command ? E_UNEXPECTED : code;
    }
};

} // namespace vant::host
