#include "platform/Interruption.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <ctime>
#include <fcntl.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace vant {

namespace {

std::atomic<void (*)()> interruptHandler{nullptr};
// A signal handler may do next to nothing, so it wakes a thread through a pipe.
std::atomic<int> interruptPipe{-1};
std::atomic<std::int64_t> firstInterrupt{0}; ///< in milliseconds since the system's start; 0: none yet

std::int64_t Milliseconds() {
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return std::int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1000000 + 1;
}

extern "C" void HandleInterrupt(int signal) {
    constexpr std::int64_t sameInterrupt = 500;
    const int error = errno;
    const std::int64_t now = Milliseconds();
    std::int64_t first = 0;
    if (firstInterrupt.compare_exchange_strong(first, now)) {
        const char interrupted = 0;
        [[maybe_unused]] const ssize_t written = write(interruptPipe, &interrupted, 1);
    } else if (now - first > sameInterrupt) {
        std::signal(signal, SIG_DFL);
        std::raise(signal); // Takes effect when this handler returns.
    }
    errno = error;
}

void AwaitInterrupt(int pipe) {
    char interrupted = 0;
    ssize_t count = 0;
    do
        count = read(pipe, &interrupted, 1);
    while (count < 0 && errno == EINTR);
    if (count == 1)
        interruptHandler.load()();
}

/// Starts the thread that calls the handler; it lasts as long as the program.
int StartInterruptThread() {
    int ends[2] = {};
    if (pipe2(ends, O_CLOEXEC) != 0)
        throw std::system_error(errno, std::generic_category());
    std::thread(AwaitInterrupt, ends[0]).detach();
    return ends[1];
}

bool IsIgnored(int signal) {
    struct sigaction action = {};
    return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

void Handle(int signal) {
    struct sigaction action = {};
    action.sa_handler = HandleInterrupt;
    action.sa_flags = SA_RESTART;
    sigaction(signal, &action, nullptr);
}

} // namespace

void OnFirstInterrupt(void (*handler)()) {
    interruptHandler = handler;
    static const int pipe = StartInterruptThread();
    interruptPipe = pipe;
    Handle(SIGINT);
    Handle(SIGTERM);
    if (!IsIgnored(SIGHUP))
        Handle(SIGHUP);
}

} // namespace vant
