#include "platform/portable/user.h"

#include "platform/MessagePresenter.h"

#include <memory>
#include <mutex>
#include <utility>

struct HWND__ {
    int unused;
};

namespace {

std::mutex presenterMutex;
std::shared_ptr<const vant::MessagePresenter> installedPresenter;
HWND__ pseudoWindow{};

std::shared_ptr<const vant::MessagePresenter> Presenter() {
    const std::lock_guard lock(presenterMutex);
    return installedPresenter;
}

} // namespace

HWND GetForegroundWindow() {
    return Presenter() ? &pseudoWindow : nullptr;
}

int MessageBoxW(HWND, LPCWSTR text, LPCWSTR caption, UINT style) {
    const auto presenter = Presenter();
    if (!presenter)
        return 0;
    try {
        (*presenter)(text ? text : L"", caption ? caption : L"", style);
        return IDOK;
    } catch (...) {
        return 0;
    }
}

namespace vant {

void SetMessagePresenter(MessagePresenter presenter) {
    auto replacement = presenter ? std::make_shared<const MessagePresenter>(std::move(presenter)) : nullptr;
    const std::lock_guard lock(presenterMutex);
    installedPresenter.swap(replacement);
}

} // namespace vant
