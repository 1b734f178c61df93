#pragma once

#include "platform/system.h"

#include <functional>
#include <string>

namespace vant {

/// Shows a message to the user and returns once it has been closed. `style` is made of the MB_ values. Called
/// on the thread that shows the message, on several threads at once if they do.
using MessagePresenter =
    std::function<void(const std::wstring& text, const std::wstring& caption, UINT style)>;

#ifdef _WIN32
/// The system shows messages itself; the presenter is never called.
inline void SetMessagePresenter(MessagePresenter) {}
#else
/// Has `presenter` show the message boxes of this process, those of the command module included; an empty one
/// removes it. A message that is being shown stays with the presenter that began it. Any thread.
VANT_PLATFORM_API void SetMessagePresenter(MessagePresenter presenter);
#endif

} // namespace vant
