#pragma once

#include "platform/system.h"

namespace vant {

/// Call in a handler of any exception. Returns the code of a failed host or platform call, E_OUTOFMEMORY for
/// std::bad_alloc, and E_FAIL for anything else.
HRESULT ResultFromCaughtException() noexcept;

} // namespace vant
