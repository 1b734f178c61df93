#pragma once

#include <filesystem>

namespace vant {

/// Whether the library of that file is loaded in this process.
bool IsLoaded(const std::filesystem::path& file);

} // namespace vant
