#include "platform/ChildProcess.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <mutex>
#include <spawn.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace vant {

namespace {

void Check(int error, const char* what) {
    if (error != 0)
        throw std::system_error(error, std::generic_category(), what);
}

/// Owns a file descriptor.
class Descriptor {
public:
    explicit Descriptor(int number = -1) noexcept : m_number(number) {}
    ~Descriptor() { Close(); }
    Descriptor(Descriptor&& other) noexcept : m_number(std::exchange(other.m_number, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(m_number, other.m_number);
        return *this;
    }
    int Get() const noexcept { return m_number; }
    void Close() noexcept {
        if (m_number != -1)
            close(std::exchange(m_number, -1));
    }

private:
    int m_number;
};

struct Pipe {
    Pipe() {
        std::array<int, 2> ends{};
        Check(pipe2(ends.data(), O_CLOEXEC) == 0 ? 0 : errno, "pipe2");
        out = Descriptor(ends[0]);
        in = Descriptor(ends[1]);
    }
    Descriptor out; ///< To read from.
    Descriptor in;  ///< To write to.
};

/// The state in which a child begins, apart from its arguments.
class Beginning {
public:
    Beginning(int input, int output) {
        Check(posix_spawn_file_actions_init(&m_files), "posix_spawn_file_actions_init");
        Check(posix_spawnattr_init(&m_attributes), "posix_spawnattr_init");
        Check(posix_spawn_file_actions_adddup2(&m_files, input, STDIN_FILENO), "adddup2");
        Check(posix_spawn_file_actions_adddup2(&m_files, output, STDOUT_FILENO), "adddup2");
        // Signals act as in a program of its own, whatever this one does with them, in a group of its own.
        sigset_t none;
        sigemptyset(&none);
        sigset_t usual;
        sigemptyset(&usual);
        for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE})
            sigaddset(&usual, signal);
        Check(posix_spawnattr_setsigmask(&m_attributes, &none), "setsigmask");
        Check(posix_spawnattr_setsigdefault(&m_attributes, &usual), "setsigdefault");
        Check(posix_spawnattr_setpgroup(&m_attributes, 0), "setpgroup");
        Check(posix_spawnattr_setflags(&m_attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF |
                                                          POSIX_SPAWN_SETPGROUP),
              "setflags");
    }
    ~Beginning() {
        posix_spawnattr_destroy(&m_attributes);
        posix_spawn_file_actions_destroy(&m_files);
    }
    Beginning(const Beginning&) = delete;
    Beginning& operator=(const Beginning&) = delete;

    const posix_spawn_file_actions_t* Files() const noexcept { return &m_files; }
    const posix_spawnattr_t* Attributes() const noexcept { return &m_attributes; }

private:
    posix_spawn_file_actions_t m_files{};
    posix_spawnattr_t m_attributes{};
};

} // namespace

struct ChildProcess::System {
    Descriptor input;  ///< The child's.
    Descriptor output; ///< The child's.
    pid_t id = 0;
    std::mutex
        access; ///< Protects `hasEnded`: the number of a child that has been waited for may be another's.
    bool hasEnded = false;
    int status = 0;

    void Await() {
        // Not reaped yet, so that Kill reaches this process and no other until `hasEnded` is set.
        siginfo_t end{};
        while (waitid(P_PID, static_cast<id_t>(id), &end, WEXITED | WNOWAIT) == -1 && errno == EINTR) {
        }
        const std::lock_guard lock(access);
        if (!std::exchange(hasEnded, true))
            waitpid(id, &status, 0);
    }
};

ChildProcess::ChildProcess(const std::filesystem::path& program, const std::vector<std::string>& arguments)
    : m_system(std::make_unique<System>()) {
    Pipe input;
    Pipe output;
    std::string name = program.string();
    std::vector<std::string> copies = arguments;
    std::vector<char*> values = {name.data()};
    for (std::string& each : copies)
        values.push_back(each.data());
    values.push_back(nullptr);
    const Beginning beginning(input.out.Get(), output.in.Get());
    Check(posix_spawn(&m_system->id, name.c_str(), beginning.Files(), beginning.Attributes(), values.data(),
                      environ),
          "posix_spawn");
    m_system->input = std::move(input.in);
    m_system->output = std::move(output.out);
}

ChildProcess::~ChildProcess() {
    Kill();
    m_system->Await();
}

bool ChildProcess::Write(std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = write(m_system->input.Get(), text.data(), text.size());
        if (written >= 0)
            text.remove_prefix(static_cast<std::size_t>(written));
        else if (errno != EINTR)
            return false;
    }
    return true;
}

bool ChildProcess::ReadLine(std::string& line) {
    for (std::size_t searched = 0;;) {
        if (const std::size_t end = m_read.find('\n', searched); end != std::string::npos) {
            line = m_read.substr(0, end);
            m_read.erase(0, end + 1);
            return true;
        }
        searched = m_read.size();
        std::array<char, 65536> block{};
        const ssize_t count = read(m_system->output.Get(), block.data(), block.size());
        if (count > 0)
            m_read.append(block.data(), static_cast<std::size_t>(count));
        else if (count == 0 || errno != EINTR)
            return false;
    }
}

std::string ChildProcess::AwaitEnd() {
    m_system->input.Close();
    m_system->Await();
    const int status = m_system->status;
    return WIFSIGNALED(status) ? "signal " + std::to_string(WTERMSIG(status))
                               : "exit code " + std::to_string(WEXITSTATUS(status));
}

void ChildProcess::Kill() noexcept {
    const std::lock_guard lock(m_system->access);
    if (!m_system->hasEnded)
        kill(m_system->id, SIGKILL);
}

} // namespace vant
