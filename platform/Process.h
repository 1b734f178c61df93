#pragma once

#include "platform/system.h"

#include <filesystem>
#include <string>
#include <vector>

namespace vant {

/// The arguments of this process in UTF-8, without the program's name. On Windows they are taken from the
/// wide command line, so that every file name survives.
VANT_PLATFORM_API std::vector<std::string> ProcessArguments(int argc, const char* const* argv);

/// The folder that holds the running program's file.
VANT_PLATFORM_API std::filesystem::path ProgramFolder();

/// Makes UTF-8 text readable on the console that this process writes to.
VANT_PLATFORM_API void PrepareConsole();

/// Whether standard output goes to a terminal rather than to a file or a pipe.
VANT_PLATFORM_API bool OutputIsTerminal();

/// Calls `handler`, on a thread of its own, when the user interrupts the program (Ctrl-C), the first time
/// only; the second interruption ends the program at once. The handler must be safe against the program's
/// other threads, and may be called until the program ends. Throws std::system_error where the system has no
/// thread to give.
VANT_PLATFORM_API void OnFirstInterrupt(void (*handler)());

} // namespace vant
