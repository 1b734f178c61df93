#pragma once

#include "platform/system.h"

namespace vant {

/// Calls `handler`, on a thread of its own, when the program is first asked to end: by Ctrl-C, SIGTERM or
/// SIGHUP; on Windows by Ctrl-C, Ctrl-Break or the end of the console or the session. Further requests in the
/// next half second count as the same one; a later one ends the program at once. A SIGHUP that the program
/// was started to ignore (nohup) stays ignored. The handler must be safe against the program's other threads,
/// and may be called until the program ends. To be called once, before the program starts other threads:
/// they inherit its signal mask. Throws std::system_error if the system has no thread left.
VANT_PLATFORM_API void OnFirstInterrupt(void (*handler)());

} // namespace vant
