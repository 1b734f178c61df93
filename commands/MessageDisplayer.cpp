#include "commands/MessageDisplayer.h"

#include <tuple>

namespace vant {

void CMessageDisplayer::ExecuteCommand() {
    CComBSTR text;
    std::ignore = GetDataStoreText(GetProperty(L"dsString"), text);
    const HWND foreground = GetForegroundWindow();
    if (!foreground)
        return; // the message is dropped, deliberately without any report
    MessageBoxW(foreground, text.Text().data(), L"TORVEX",
                MB_OK | MB_ICONEXCLAMATION | MB_TASKMODAL | MB_SETFOREGROUND);
}

} // namespace vant
