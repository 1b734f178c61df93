#pragma once

#include "platform/portable/types.h"

using HANDLE = void*;
struct SECURITY_ATTRIBUTES;

inline constexpr DWORD INFINITE = 0xFFFFFFFF;
inline constexpr DWORD WAIT_OBJECT_0 = 0;
inline constexpr DWORD WAIT_TIMEOUT = 0x102;
inline constexpr DWORD WAIT_FAILED = 0xFFFFFFFF;

extern "C" {

/// Writes a diagnostic text for a developer: to the hook of OutputDebugHook (platform/portable/testing.h)
/// if one is installed, otherwise nowhere.
VANT_PLATFORM_API void OutputDebugStringW(LPCWSTR text);

/// An event, to be closed with CloseHandle; null if memory runs out, or for a name: all events are unnamed.
/// `security` is ignored.
VANT_PLATFORM_API HANDLE CreateEventW(SECURITY_ATTRIBUTES* security, BOOL manualReset, BOOL initialState,
                                      LPCWSTR name);
// All of these return FALSE for a null handle. Handles are those of events.
VANT_PLATFORM_API BOOL SetEvent(HANDLE event);
VANT_PLATFORM_API BOOL ResetEvent(HANDLE event);
VANT_PLATFORM_API BOOL CloseHandle(HANDLE event);

/// In the time of platform/Clock.h. Of several threads that wait on an auto-reset event, the one that has
/// waited longest takes the signal. WAIT_FAILED for a null handle.
VANT_PLATFORM_API DWORD WaitForSingleObject(HANDLE event, DWORD milliseconds);
/// The same clock; 0 returns at once.
VANT_PLATFORM_API void Sleep(DWORD milliseconds);
}
