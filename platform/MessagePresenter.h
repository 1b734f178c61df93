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
/// removes it. A message on display stays with the presenter that began it. Any thread. Windows shows
/// messages itself and never calls the presenter.
VANT_PLATFORM_API void SetMessagePresenter(MessagePresenter presenter);

} // namespace vant
