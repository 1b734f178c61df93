#pragma once

// What tests may see and disturb in the portable platform. No program needs this header to run.

#include "platform/portable/types.h"

namespace vant::testing {

/// Number of BSTRs of this process that are allocated and not yet freed.
VANT_PLATFORM_API std::size_t LiveBstrCount() noexcept;

/// Number of events of this process that are not closed.
VANT_PLATFORM_API std::size_t LiveEventCount() noexcept;

/// Called before each BSTR allocation; if it returns false, that allocation fails. Null removes the hook.
/// Install and remove it while no other thread allocates.
using BstrAllocationHook = bool (*)() noexcept;
VANT_PLATFORM_API void SetBstrAllocationHook(BstrAllocationHook hook) noexcept;

/// Receives what OutputDebugStringW is given, on the calling thread. Null removes the hook.
using OutputDebugHook = void (*)(LPCWSTR text);
VANT_PLATFORM_API void SetOutputDebugHook(OutputDebugHook hook) noexcept;

} // namespace vant::testing
