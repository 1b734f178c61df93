#include "platform/Interruption.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <system_error>
#include <thread>

namespace vant {

namespace {

bool IsIgnored(int signal) {
    struct sigaction action = {};
    return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

/// Lets a signal do what it does to a program that does not handle it.
[[noreturn]] void EndBy(int signal) {
    sigset_t only;
    sigemptyset(&only);
    sigaddset(&only, signal);
    std::signal(signal, SIG_DFL);
    pthread_sigmask(SIG_UNBLOCK, &only, nullptr);
    std::raise(signal);
    std::abort(); // Not reached: the signals end a program by default.
}

/// Takes the requests one by one. No signal handler runs, so nothing here is limited to what is safe in one.
void AwaitInterrupts(sigset_t signals, void (*handler)()) {
    constexpr std::chrono::milliseconds sameInterrupt(500);
    int signal = 0;
    while (sigwait(&signals, &signal) != 0) {
    }
    const auto first = std::chrono::steady_clock::now();
    // On a thread of its own, so that a later request ends the program even if the handler waits.
    try {
        std::thread(handler).detach();
    } catch (const std::system_error&) {
        handler();
    }
    do {
        while (sigwait(&signals, &signal) != 0) {
        }
    } while (std::chrono::steady_clock::now() - first <= sameInterrupt);
    EndBy(signal);
}

} // namespace

void OnFirstInterrupt(void (*handler)()) {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    if (!IsIgnored(SIGHUP))
        sigaddset(&signals, SIGHUP);
    // From now on these wait for the thread below, also those to the threads that this one starts.
    if (const int error = pthread_sigmask(SIG_BLOCK, &signals, nullptr); error != 0)
        throw std::system_error(error, std::generic_category());
    std::thread(AwaitInterrupts, signals, handler).detach();
}

} // namespace vant
