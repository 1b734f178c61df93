#pragma once

#include "platform/system.h"

#include <functional>
#include <string>

namespace vant {

/// Shows a message to the user and returns once it has been closed. `style` is made of the MB_ values. Called
/// on the thread that shows the message, on several threads at once if they do.
using MessagePresenter =
    std::function<void(const std::wstring& text, const std::wstring& caption, UINT style)>;

/// Has `presenter` show the message boxes of this process, those of the command module included; an empty one
/// removes it. A message on display stays with the presenter that began it. Any thread. On Windows this
/// concerns the libraries that this program loads as DynamicLibrary or names to TakeMessagesFrom; without a
/// presenter, the system shows their messages.
VANT_PLATFORM_API void SetMessagePresenter(MessagePresenter presenter);

/// Makes the message boxes of the library in which an address lies appear through the presenter.
VANT_PLATFORM_API void TakeMessagesFrom(const void* address) noexcept;

/// What the presenter is asked, for the systems' own functions.
namespace presenting {

/// Whether there is a presenter.
bool IsPossible();
/// Has the presenter show the message and waits until it has been closed. False if nothing was shown, because
/// there is no presenter or it threw. Null texts are empty.
bool Show(const wchar_t* text, const wchar_t* caption, UINT style) noexcept;

} // namespace presenting

} // namespace vant
