#include "platform/Process.h"

#include <atomic>

#ifdef _WIN32
#include <io.h>
#include <shellapi.h>
#include <stdio.h>
#else
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <system_error>
#include <thread>
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
// A signal handler may do next to nothing, so it wakes a thread through a pipe.
std::atomic<int> interruptPipe{-1};

extern "C" void HandleInterrupt(int signal) {
    std::signal(signal, SIG_DFL);
    const int error = errno;
    const char interrupted = 0;
    [[maybe_unused]] const ssize_t written = write(interruptPipe, &interrupted, 1);
    errno = error;
}

void AwaitInterrupts(int pipe) {
    for (char interrupted = 0;;) {
        const ssize_t count = read(pipe, &interrupted, 1);
        if (count == 1)
            interruptHandler.load()();
        else if (count == 0 || errno != EINTR)
            return;
    }
}

/// Starts the thread that calls the handler; it lasts as long as the program.
int StartInterruptThread() {
    int ends[2] = {};
    if (pipe2(ends, O_CLOEXEC) != 0)
        throw std::system_error(errno, std::generic_category());
    std::thread(AwaitInterrupts, ends[0]).detach();
    return ends[1];
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
    static const int pipe = StartInterruptThread();
    interruptPipe = pipe;
    std::signal(SIGINT, HandleInterrupt);
}

#endif

} // namespace vant
