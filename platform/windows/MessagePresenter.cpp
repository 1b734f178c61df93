#include "platform/MessagePresenter.h"

#include "platform/windows/ImportReplacement.h"

namespace vant {

namespace {

// What a library calls in place of the system's functions.

HWND WINAPI GetForegroundWindowHere() {
    return presenting::IsPossible() ? GetDesktopWindow() : GetForegroundWindow();
}

int WINAPI MessageBoxHere(HWND owner, const wchar_t* text, const wchar_t* caption, UINT style) {
    if (!presenting::IsPossible())
        return MessageBoxW(owner, text, caption, style);
    return presenting::Show(text, caption, style) ? IDOK : 0;
}

} // namespace

void TakeMessagesFrom(const void* address) noexcept {
    static const ImportReplacement replacements[] = {
        {"GetForegroundWindow", reinterpret_cast<void*>(&GetForegroundWindowHere)},
        {"MessageBoxW", reinterpret_cast<void*>(&MessageBoxHere)},
    };
    if (const HMODULE library = LibraryOf(address))
        ReplaceImports(library, replacements);
}

} // namespace vant
