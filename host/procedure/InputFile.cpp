#include "host/procedure/InputFile.h"

#include <cerrno>
#include <fstream>
#include <iostream>
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

[[noreturn]] void FailWithSize() {
    throw InputError("larger than " + std::to_string(largestInput >> 20) + " MiB");
}

std::string ReadAll(std::istream& in) {
    std::string content;
    try {
        std::vector<char> block(std::size_t{1} << 16);
        do {
            in.read(block.data(), static_cast<std::streamsize>(block.size()));
            content.append(block.data(), static_cast<std::size_t>(in.gcount()));
            if (content.size() > largestInput)
                FailWithSize();
        } while (in);
    } catch (const std::bad_alloc&) {
        Fail(std::errc::not_enough_memory);
    }
    // The end of the file alone ends the loop without an error.
    if (in.bad() || !in.eof())
        FailWithErrno();
    return content;
}

/// Reading a device may never end, and opening a named pipe waits for a writer. The pipes that shells make
/// for
/// `<(command)` have a writer already.
void RefuseDeviceOrPipe(const std::filesystem::path& file) {
    std::error_code unknown;
    const std::filesystem::file_type type = std::filesystem::status(file, unknown).type();
    const bool hasNoName = file.parent_path() == "/dev/fd" || file.parent_path() == "/proc/self/fd";
    if (type == std::filesystem::file_type::directory)
        Fail(std::errc::is_a_directory);
    if (type == std::filesystem::file_type::fifo && !hasNoName)
        throw InputError("this is a pipe; the name - reads the standard input");
    if (type == std::filesystem::file_type::character || type == std::filesystem::file_type::block ||
        type == std::filesystem::file_type::socket)
        throw InputError("this is a device; the name - reads the standard input");
}

} // namespace

std::string ReadFile(const std::filesystem::path& file) {
    RefuseDeviceOrPipe(file);
    std::error_code unknown;
    if (const auto size = std::filesystem::file_size(file, unknown); !unknown && size > largestInput)
        FailWithSize();
    errno = 0;
    std::ifstream in(file, std::ios::binary);
    if (!in)
        FailWithErrno();
    return ReadAll(in);
}

std::string ReadStandardInput() {
    errno = 0;
    return ReadAll(std::cin);
}

std::string FileName(const std::filesystem::path& file) {
    // Not by way of generic_wstring, which takes characters beyond ASCII in some locales only.
    const std::u8string name = file.generic_u8string();
    return {name.begin(), name.end()};
}

} // namespace vant::host
