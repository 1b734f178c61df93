#include "platform/MessagePresenter.h"

#include <memory>
#include <mutex>
#include <utility>

namespace vant {

namespace {

std::mutex presenterMutex;
std::shared_ptr<const MessagePresenter> installedPresenter;

std::shared_ptr<const MessagePresenter> Presenter() {
    const std::lock_guard lock(presenterMutex);
    return installedPresenter;
}

} // namespace

void SetMessagePresenter(MessagePresenter presenter) {
    auto replacement = presenter ? std::make_shared<const MessagePresenter>(std::move(presenter)) : nullptr;
    const std::lock_guard lock(presenterMutex);
    installedPresenter.swap(replacement);
}

namespace presenting {

bool IsPossible() {
    return Presenter() != nullptr;
}

bool Show(const wchar_t* text, const wchar_t* caption, UINT style) noexcept {
    try {
        const auto presenter = Presenter();
        if (!presenter)
            return false;
        (*presenter)(text ? text : L"", caption ? caption : L"", style);
        return true;
    } catch (...) {
        return false;
    }
}

} // namespace presenting

} // namespace vant
