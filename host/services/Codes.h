#pragma once

#include "platform/system.h"

namespace vant {

/// What the host answers where a named thing does not exist: a data-store entry, a parameter, a running
/// command. (The system's "element not found".)
inline constexpr HRESULT codeNotFound = static_cast<HRESULT>(0x80070490);

/// What the host answers to a request to run a command once the procedure has been aborted. (The system's
/// "operation aborted".)
inline constexpr HRESULT codeAborted = static_cast<HRESULT>(0x80004004);

} // namespace vant
