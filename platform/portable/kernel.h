#pragma once

#include "platform/portable/types.h"

extern "C" {

/// Writes a diagnostic text for a developer: to the hook of OutputDebugHook (platform/portable/testing.h)
/// where one is installed, else nowhere.
VANT_PLATFORM_API void OutputDebugStringW(LPCWSTR text);
}
