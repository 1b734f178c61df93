#pragma once

#include "framework/interfaces/VantCommand.h"
#include "platform/ComPtr.h"

#include <string_view>

namespace vant::host {

/// Creates commands by class name.
class CommandFactory {
public:
    virtual ~CommandFactory() = default;

    /// A new command of that class, or the code of the failure: CLASS_E_CLASSNOTAVAILABLE for a class that
    /// does not exist. Any thread may call.
    virtual HRESULT Create(std::string_view className, CComPtr<IVantCommand>& command) const = 0;

    /// False where commands, or locks of their module, are known to be left.
    virtual bool CanUnload() const = 0;
};

} // namespace vant::host
