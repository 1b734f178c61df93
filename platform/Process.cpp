#include "platform/Process.h"

#include <atomic>

#ifdef _WIN32
#include <io.h>
#include <shellapi.h>
#include <stdio.h>
#else
#include <csignal>
#include <unistd.h>
#endif

namespace vant {

#ifdef _WIN32

namespace {

std::atomic<void (*)()> interruptHandler{nullptr};

BOOL WINAPI HandleConsoleEvent(DWORD event) {
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT)
        return FALSE;
    const auto handler = interruptHandler.exchange(nullptr);
    if (!handler)
        return FALSE;
    handler();
    return TRUE;
}

std::string ToUtf8(const wchar_t* text) {
    const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
    if (size <= 1)
        return {};
    std::string result(static_cast<std::size_t>(size - 1), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, -1, result.data(), size, nullptr, nullptr);
    return result;
}

} // namespace

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

std::filesystem::path ProgramFolder() {
    std::wstring file(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(nullptr, file.data(), static_cast<DWORD>(file.size()));
        if (length < file.size()) {
            file.resize(length);
            return std::filesystem::path(file).parent_path();
        }
        file.resize(file.size() * 2);
    }
}

void PrepareConsole() {
    SetConsoleOutputCP(CP_UTF8);
}

bool OutputIsTerminal() {
    return _isatty(_fileno(stdout)) != 0;
}

void OnFirstInterrupt(void (*handler)()) {
    interruptHandler = handler;
    SetConsoleCtrlHandler(HandleConsoleEvent, TRUE);
}

#else

namespace {

std::atomic<void (*)()> interruptHandler{nullptr};

extern "C" void HandleInterrupt(int signal) {
    std::signal(signal, SIG_DFL);
    interruptHandler.load()();
}

} // namespace

std::vector<std::string> ProcessArguments(int argc, const char* const* argv) {
    return {argv + (argc > 0 ? 1 : 0), argv + argc};
}

std::filesystem::path ProgramFolder() {
    return std::filesystem::read_symlink("/proc/self/exe").parent_path();
}

void PrepareConsole() {}

bool OutputIsTerminal() {
    return isatty(STDOUT_FILENO) != 0;
}

void OnFirstInterrupt(void (*handler)()) {
    interruptHandler = handler;
    std::signal(SIGINT, HandleInterrupt);
}

#endif

} // namespace vant
