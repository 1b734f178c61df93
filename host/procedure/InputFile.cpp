#include "host/procedure/InputFile.h"

#include <cerrno>
#include <fstream>
#include <new>
#include <system_error>
#include <vector>

namespace vant::host {

namespace {

[[noreturn]] void Fail(std::errc code) {
    throw InputError(std::make_error_code(code).message());
}

[[noreturn]] void FailWithErrno() {
    Fail(errno != 0 ? static_cast<std::errc>(errno) : std::errc::io_error);
}

std::string ReadAll(std::ifstream& in) {
    std::vector<char> block(std::size_t{1} << 16);
    std::string content;
    do {
        in.read(block.data(), static_cast<std::streamsize>(block.size()));
        content.append(block.data(), static_cast<std::size_t>(in.gcount()));
        if (content.size() > largestInput)
            throw InputError("larger than " + std::to_string(largestInput >> 20) + " MiB");
    } while (in);
    // The end of the file alone ends the loop without an error.
    if (in.bad() || !in.eof())
        FailWithErrno();
    return content;
}

} // namespace

std::string ReadFile(const std::filesystem::path& file) {
    std::error_code unknown;
    if (std::filesystem::is_directory(file, unknown))
        Fail(std::errc::is_a_directory);
    try {
        errno = 0;
        std::ifstream in(file, std::ios::binary);
        if (!in)
            FailWithErrno();
        return ReadAll(in);
    } catch (const std::bad_alloc&) {
        Fail(std::errc::not_enough_memory);
    }
}

std::string FileName(const std::filesystem::path& file) {
    // Not by way of generic_wstring, which takes characters beyond ASCII in some locales only.
    const std::u8string name = file.generic_u8string();
    return {name.begin(), name.end()};
}

} // namespace vant::host
