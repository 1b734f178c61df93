#pragma once

#include "module/registration/Script.h"
#include "platform/system.h"

#include <string>
#include <string_view>

namespace vant {

/// Writes (or removes) the registration of every class that the module creates, then that of its type
/// library. Stops at the first failure and returns it; what was written before stays. Any thread.
HRESULT RegisterModule(ScriptMode mode) noexcept;

// What differs between the systems: one implementation for Windows, one for the others.

/// The registration script embedded in the module under that resource number; empty if there is none.
std::string_view EmbeddedScript(UINT resource);

/// Full path of the module's own file, of any length.
std::wstring ModulePath();

/// Runs every script against the system's store, then registers or removes the type library if there is
/// one.
HRESULT RegisterWithSystem(ScriptMode mode);

/// Runs the scripts of all classes of the object map against `store`, stopping at the first failure.
HRESULT RunAllScripts(ScriptMode mode, KeyStore& store);

} // namespace vant
