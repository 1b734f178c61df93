#pragma once

#include "platform/system.h"

#include <filesystem>
#include <string>
#include <vector>

namespace vant {

/// The arguments of this process in UTF-8, without the program's name. On Windows they come from the wide
/// command line, so that every file name survives.
VANT_PLATFORM_API std::vector<std::string> ProcessArguments(int argc, const char* const* argv);

/// The running program's file.
VANT_PLATFORM_API std::filesystem::path ProgramFile();

/// The folder that holds the running program's file.
VANT_PLATFORM_API std::filesystem::path ProgramFolder();

/// Keeps a file that the program opens from taking the place of a closed standard stream, and makes writing
/// to a closed stream or pipe a failed write that the program sees. For the start of main, before any file is
/// opened. Throws std::system_error if the null device cannot be opened.
VANT_PLATFORM_API void SecureStandardStreams();

} // namespace vant
