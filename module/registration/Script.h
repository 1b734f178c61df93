#pragma once

#include "module/registration/KeyStore.h"
#include "platform/system.h"

#include <string>
#include <string_view>

namespace vant {

enum class ScriptMode { Register, Unregister };

/// Returned for a malformed script.
inline constexpr HRESULT scriptMalformed = HRESULT_FROM_WIN32(ERROR_INVALID_DATA);

/// Runs a registration script against `store`. The script is single-byte text (Latin-1):
///
///     HKCR
///     {
///         [NoRemove | ForceRemove] Key [= s 'default value']
///         {
///             val Name = s 'value'
///             Subkey ...
///         }
///     }
///
/// Blanks and line breaks separate; a brace or an equals sign counts only if it stands alone. Names and
/// values stand in single quotes (a quote inside is written twice); a name without blanks may go without
/// them. A name has no null, a key's name no backslash. "%MODULE%" inside a value stands for `modulePath`,
/// whatever characters that has.
///
/// Registering writes keys and values in the order of the text; ForceRemove first deletes what is there.
/// Unregistering removes what the script names, subkeys before their key: a ForceRemove key whole, a NoRemove
/// key not at all, any other key once nothing of somebody else's stands below it.
///
/// Runs up to the first failure and returns it: the store's own HRESULT, or scriptMalformed, after a debug
/// trace with line and column. What was done before stays; nothing is done from the point of the
/// failure on. Any thread.
HRESULT RunScript(std::string_view script, std::wstring_view modulePath, ScriptMode mode, KeyStore& store);

} // namespace vant
