#pragma once

#include "module/registration/Script.h"
#include "platform/system.h"

#include <string>
#include <string_view>

namespace vant {

/// Writes (or removes) the registration of every class that the module creates, then that of its type
/// library. Answers the first failure, at which it stops; what was written before stays. Any thread.
HRESULT RegisterModule(ScriptMode mode) noexcept;

// What the system below gives; one implementation each for Windows and elsewhere.

/// The registration script embedded in the module under that resource number; empty where there is none.
std::string_view EmbeddedScript(UINT resource);

/// Full path of the module's own file, of any length.
std::wstring ModulePath();

/// Runs every script against the system's store, then registers or removes the type library where there is
/// one.
HRESULT RegisterWithSystem(ScriptMode mode);

/// Runs the scripts of all classes of the object map against `store`, stopping at the first failure.
HRESULT RunAllScripts(ScriptMode mode, KeyStore& store);

} // namespace vant
