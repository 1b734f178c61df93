#pragma once

#include "platform/ChildProcess.h"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <exception>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace vant::host {

/// Workers are copies of one program. Each reads requests from its standard input, one in a line, and writes
/// a reply to each of them, also in a line, to its standard output.
struct WorkerSettings {
    std::filesystem::path program;
    std::vector<std::string> arguments;
    std::size_t count = 1;
    std::chrono::milliseconds longestCase{}; ///< In real time; a worker that takes longer is killed.
};

/// What a worker has made of a request.
struct WorkerReply {
    std::optional<std::string> line; ///< Nothing if the worker has not replied.
    std::string failure{};           ///< Why not, such as "the worker has ended with signal 11".
};

/// Has several workers process requests at the same time. A worker that ends or hangs costs its request; a
/// new one takes its place.
class WorkerPool {
public:
    using Take = std::function<void(std::size_t request, WorkerReply reply)>;

    explicit WorkerPool(WorkerSettings settings) : m_settings(std::move(settings)) {}

    /// Calls `take` once for each request, in any order but one call at a time, on other threads. Call it
    /// once; it returns when all are done, or soon after Stop. Throws std::system_error if a worker cannot be
    /// started, and passes on what `take` throws.
    void Run(const std::vector<std::string>& requests, const Take& take);

    /// Ends the workers. The requests on which they were working, and those that were left, are not taken.
    /// Any thread.
    void Stop() noexcept;

private:
    using Clock = std::chrono::steady_clock;

    /// The worker of one thread.
    struct Worker {
        std::unique_ptr<ChildProcess> process{};
        std::optional<Clock::time_point> deadline{}; ///< While it works.
        bool isLate = false;
    };

    void Work(Worker& worker, const std::vector<std::string>& requests, const Take& take);
    /// Nothing if the pool is stopped.
    std::optional<WorkerReply> Process(Worker& worker, const std::string& request);
    void KillLateOnes();
    /// The next one that nobody has; nothing if none is left.
    std::optional<std::size_t> NextRequest(std::size_t count);
    void Fail(std::exception_ptr failure) noexcept;

    const WorkerSettings m_settings;
    std::mutex m_taking;
    std::mutex m_access; ///< Protects what follows.
    std::condition_variable m_changed;
    std::vector<Worker> m_workers;
    std::size_t m_next = 0;
    bool m_stopped = false;
    bool m_done = false;
    std::exception_ptr m_failure;
};

} // namespace vant::host
