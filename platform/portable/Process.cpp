#include "platform/Process.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>

namespace vant {

std::vector<std::string> ProcessArguments(int argc, const char* const* argv) {
    return {argv + (argc > 0 ? 1 : 0), argv + argc};
}

std::filesystem::path ProgramFile() {
    return std::filesystem::read_symlink("/proc/self/exe");
}

std::filesystem::path ProgramFolder() {
    return ProgramFile().parent_path();
}

void SecureStandardStreams() {
    std::signal(SIGPIPE, SIG_IGN);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(stream, F_GETFD) != -1)
            continue;
        // Opened the other way round, so that reading and writing fail as they do on a closed stream. The
        // system takes the lowest free descriptor, which is this one.
        if (open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY) != stream)
            throw std::system_error(errno, std::generic_category(), "/dev/null");
    }
}

} // namespace vant
