#include "commands/MessageDisplayer.h"

#include <tuple>

namespace vant {

void CMessageDisplayer::ExecuteCommand() {
    CComVariant value;
    std::ignore = GetDataStoreValue(GetProperty(L"dsString"), value);
    const HWND foreground = GetForegroundWindow();
    if (!foreground)
        return; // The message is dropped on purpose, without any report.
    MessageBoxW(foreground, TextOf(StringMember(value.Get())).data(), L"TORVEX",
                MB_OK | MB_ICONEXCLAMATION | MB_TASKMODAL | MB_SETFOREGROUND);
}

} // namespace vant
