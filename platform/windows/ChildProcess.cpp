#include "platform/ChildProcess.h"

#include "platform/Utf8.h"

#include <array>
#include <mutex>
#include <system_error>
#include <utility>

namespace vant {

namespace {

[[noreturn]] void Fail(const char* what) {
    throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), what);
}

/// Owns a handle of the system.
class Handle {
public:
    explicit Handle(HANDLE handle = nullptr) noexcept : m_handle(handle) {}
    ~Handle() { Close(); }
    Handle(Handle&& other) noexcept : m_handle(std::exchange(other.m_handle, nullptr)) {}
    Handle& operator=(Handle&& other) noexcept {
        std::swap(m_handle, other.m_handle);
        return *this;
    }
    HANDLE Get() const noexcept { return m_handle; }
    void Close() noexcept {
        if (m_handle)
            CloseHandle(std::exchange(m_handle, nullptr));
    }

private:
    HANDLE m_handle;
};

struct Pipe {
    /// A child inherits only its own end.
    explicit Pipe(bool childReads) {
        SECURITY_ATTRIBUTES inherited{};
        inherited.nLength = sizeof(inherited);
        inherited.bInheritHandle = TRUE;
        HANDLE read = nullptr;
        HANDLE write = nullptr;
        if (!CreatePipe(&read, &write, &inherited, 0))
            Fail("CreatePipe");
        out = Handle(read);
        in = Handle(write);
        if (!SetHandleInformation(childReads ? write : read, HANDLE_FLAG_INHERIT, 0))
            Fail("SetHandleInformation");
    }
    Handle out; ///< To read from.
    Handle in;  ///< To write to.
};

/// An argument as the child's C runtime reads it back from its command line.
std::wstring Quoted(std::wstring_view argument) {
    std::wstring quoted = L"\"";
    std::size_t backslashes = 0;
    for (const wchar_t each : argument) {
        // Backslashes before a quote are doubled, and the quote has one of its own.
        if (each == L'"')
            quoted.append(backslashes + 1, L'\\');
        backslashes = each == L'\\' ? backslashes + 1 : 0;
        quoted += each;
    }
    return quoted.append(backslashes, L'\\') + L'"';
}

/// One child is started at a time: another one would inherit its ends of the pipes, and keep them open.
std::mutex oneAtATime;

} // namespace

struct ChildProcess::System {
    Handle input;  ///< The child's.
    Handle output; ///< The child's.
    Handle process;
};

ChildProcess::ChildProcess(const std::filesystem::path& program, const std::vector<std::string>& arguments)
    : m_system(std::make_unique<System>()) {
    std::wstring line = Quoted(program.wstring());
    for (const std::string& each : arguments)
        line += L' ' + Quoted(ToWide(each));
    const std::lock_guard lock(oneAtATime);
    Pipe input(true);
    Pipe output(false);
    STARTUPINFOW streams{};
    streams.cb = sizeof(streams);
    streams.dwFlags = STARTF_USESTDHANDLES;
    streams.hStdInput = input.out.Get();
    streams.hStdOutput = output.in.Get();
    streams.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    PROCESS_INFORMATION started{};
    if (!CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, TRUE, CREATE_NEW_PROCESS_GROUP,
                        nullptr, nullptr, &streams, &started))
        Fail("CreateProcess");
    CloseHandle(started.hThread);
    m_system->process = Handle(started.hProcess);
    m_system->input = std::move(input.in);
    m_system->output = std::move(output.out);
}

ChildProcess::~ChildProcess() {
    Kill();
    WaitForSingleObject(m_system->process.Get(), INFINITE);
}

bool ChildProcess::Write(std::string_view text) {
    while (!text.empty()) {
        DWORD written = 0;
        if (!WriteFile(m_system->input.Get(), text.data(), static_cast<DWORD>(text.size()), &written,
                       nullptr))
            return false;
        text.remove_prefix(written);
    }
    return true;
}

bool ChildProcess::ReadLine(std::string& line) {
    for (std::size_t searched = 0;;) {
        if (const std::size_t end = m_read.find('\n', searched); end != std::string::npos) {
            line = m_read.substr(0, end);
            m_read.erase(0, end + 1);
            // Streams that are open for text write two characters.
            if (line.ends_with('\r'))
                line.pop_back();
            return true;
        }
        searched = m_read.size();
        std::array<char, 65536> block{};
        DWORD count = 0;
        if (!ReadFile(m_system->output.Get(), block.data(), static_cast<DWORD>(block.size()), &count,
                      nullptr) ||
            count == 0)
            return false;
        m_read.append(block.data(), count);
    }
}

std::string ChildProcess::AwaitEnd() {
    m_system->input.Close();
    WaitForSingleObject(m_system->process.Get(), INFINITE);
    DWORD code = 0;
    GetExitCodeProcess(m_system->process.Get(), &code);
    return "exit code " + std::to_string(code);
}

void ChildProcess::Kill() noexcept {
    TerminateProcess(m_system->process.Get(), 1);
}

} // namespace vant
