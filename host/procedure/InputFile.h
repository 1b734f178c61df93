#pragma once

#include <cstddef>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace vant::host {

/// A file cannot be read; the text is the reason.
class InputError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The most bytes that a file may have.
inline constexpr std::size_t largestInput = std::size_t{64} << 20;

/// The bytes of a file, all of them: throws InputError if the file cannot be opened, is a device or a pipe
/// with a name, a read fails, it has more than `largestInput` bytes, or memory runs out.
std::string ReadFile(const std::filesystem::path& file);

/// The name that stands for the standard input.
inline constexpr const char* standardInput = "-";
/// All that comes from the standard input; throws as ReadFile does.
std::string ReadStandardInput();

/// The name of a file in UTF-8, with slashes on every system, as diagnostics begin with it.
std::string FileName(const std::filesystem::path& file);

} // namespace vant::host
