#pragma once

#include "platform/system.h"

namespace vant {

/// In a handler of any exception: the HRESULT that says what was caught. The code of a failed host or
/// platform call, E_OUTOFMEMORY, or E_FAIL.
HRESULT CodeOfCaughtError() noexcept;

} // namespace vant
