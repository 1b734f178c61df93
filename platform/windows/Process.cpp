#include "platform/Process.h"

#include "platform/Utf8.h"

#include <shellapi.h>

namespace vant {

std::vector<std::string> ProcessArguments(int argc, const char* const* argv) {
    int count = 0;
    wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &count);
    if (!wide)
        return {argv + (argc > 0 ? 1 : 0), argv + argc};
    std::vector<std::string> arguments;
    for (int i = 1; i < count; ++i)
        arguments.push_back(ToUtf8(wide[i]));
    LocalFree(wide);
    return arguments;
}

std::filesystem::path ProgramFile() {
    std::wstring file(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(nullptr, file.data(), static_cast<DWORD>(file.size()));
        if (length < file.size()) {
            file.resize(length);
            return file;
        }
        file.resize(file.size() * 2);
    }
}

std::filesystem::path ProgramFolder() {
    return ProgramFile().parent_path();
}

// The C runtime reserves the first three descriptors even if the streams are closed, and there is no signal
// for a closed pipe.
void SecureStandardStreams() {}

} // namespace vant
