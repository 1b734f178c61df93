#pragma once

#include "host/runner/CommandFactory.h"
#include "platform/DynamicLibrary.h"
#include "platform/system.h"

#include <filesystem>
#include <string_view>

namespace vant::host {

/// The module of the command classes, loaded as long as this object lives. It is used through its exported
/// entry points alone.
class LoadedModule final : public CommandFactory {
public:
    /// Throws std::runtime_error with the reason if the file cannot be loaded or is not such a module.
    explicit LoadedModule(const std::filesystem::path& file);

    HRESULT Create(std::string_view className, CComPtr<IVantCommand>& command) const override;

    /// Whether the module has no command and no lock left.
    bool CanUnload() const override;

    /// Registers the module's classes with the system, or removes the registration. Returns the module's
    /// result.
    HRESULT Register() const;
    HRESULT Unregister() const;

private:
    using GetClassObjectFunction = HRESULT STDAPICALLTYPE(REFCLSID classId, REFIID iid, void** out);
    using PlainFunction = HRESULT STDAPICALLTYPE();

    DynamicLibrary m_library;
    GetClassObjectFunction* m_getClassObject;
    PlainFunction* m_canUnloadNow;
};

} // namespace vant::host
