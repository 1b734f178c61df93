#pragma once

// The system's message box and the window that owns it, shown by the presenter of
// platform/MessagePresenter.h.

#include "platform/portable/types.h"

struct HWND__;
/// A window; here only ever the pseudo window that stands for an installed presenter.
using HWND = HWND__*;

inline constexpr UINT MB_OK = 0x0;
inline constexpr UINT MB_ICONEXCLAMATION = 0x30;
inline constexpr UINT MB_TASKMODAL = 0x2000;
inline constexpr UINT MB_SETFOREGROUND = 0x10000;

inline constexpr int IDOK = 1;

extern "C" {

/// A window that is not null while a presenter is installed; else null.
VANT_PLATFORM_API HWND GetForegroundWindow();
/// Has the presenter show the message and waits until it has been closed. Returns IDOK; 0 if nothing was
/// shown, because no presenter is installed or it threw. Null texts are empty.
VANT_PLATFORM_API int MessageBoxW(HWND owner, LPCWSTR text, LPCWSTR caption, UINT style);
}
