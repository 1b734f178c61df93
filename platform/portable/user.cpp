#include "platform/portable/user.h"

#include "platform/MessagePresenter.h"

struct HWND__ {
    int unused;
};

namespace {

HWND__ pseudoWindow{};

} // namespace

HWND GetForegroundWindow() {
    return vant::presenting::IsPossible() ? &pseudoWindow : nullptr;
}

int MessageBoxW(HWND, LPCWSTR text, LPCWSTR caption, UINT style) {
    return vant::presenting::Show(text, caption, style) ? IDOK : 0;
}

namespace vant {

// All libraries call the functions above.
void TakeMessagesFrom(const void*) noexcept {}

} // namespace vant
