#pragma once

#include "platform/system.h"

namespace vant {

/// Makes the console that this process writes to show UTF-8 text and, if it can, colours. The console returns
/// to its former state when the program ends, also by RestoreConsole.
VANT_PLATFORM_API void PrepareConsole();

/// Gives the console back as PrepareConsole found it; does nothing without PrepareConsole, or a second time.
/// For an end of the program that runs no exit handlers. Any thread.
VANT_PLATFORM_API void RestoreConsole() noexcept;

/// Whether standard output goes to a terminal rather than to a file or a pipe.
VANT_PLATFORM_API bool OutputIsTerminal();

/// Whether standard output goes to a terminal that shows colours by escape sequences; after PrepareConsole.
VANT_PLATFORM_API bool OutputTakesColours();

} // namespace vant
