#include "host/runner/MessageBoxes.h"

#include "platform/MessagePresenter.h"
#include "platform/Utf8.h"

#include <utility>

namespace vant::host {

namespace {

thread_local const MessageScope::Show* currentShow = nullptr;

} // namespace

MessageBoxes::MessageBoxes() {
    SetMessagePresenter([](const std::wstring& text, const std::wstring& caption, UINT) {
        if (currentShow)
            (*currentShow)(ToUtf8(caption), ToUtf8(text));
    });
}

MessageBoxes::~MessageBoxes() {
    SetMessagePresenter({});
}

MessageScope::MessageScope(const Show& show) : m_outer(std::exchange(currentShow, &show)) {}

MessageScope::~MessageScope() {
    currentShow = m_outer;
}

} // namespace vant::host
