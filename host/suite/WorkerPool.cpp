#include "host/suite/WorkerPool.h"

#include "host/text/Duration.h"

#include <algorithm>
#include <thread>
#include <utility>

namespace vant::host {

void WorkerPool::Run(const std::vector<std::string>& requests, const Take& take) {
    {
        const std::lock_guard lock(m_access);
        m_workers.resize(std::max<std::size_t>(1, std::min(m_settings.count, requests.size())));
    }
    std::jthread watch([this] { KillLateOnes(); });
    {
        std::vector<std::jthread> threads;
        for (Worker& each : m_workers)
            threads.emplace_back([&] { Work(each, requests, take); });
    }
    {
        const std::lock_guard lock(m_access);
        m_done = true;
    }
    m_changed.notify_all();
    watch.join();
    if (m_failure)
        std::rethrow_exception(m_failure);
}

void WorkerPool::Stop() noexcept {
    const std::lock_guard lock(m_access);
    m_stopped = true;
    for (const Worker& each : m_workers) {
        if (each.process)
            each.process->Kill();
    }
}

void WorkerPool::Work(Worker& worker, const std::vector<std::string>& requests, const Take& take) {
    try {
        while (const auto number = NextRequest(requests.size())) {
            auto reply = Process(worker, requests[*number]);
            if (!reply)
                return;
            const std::lock_guard lock(m_taking);
            take(*number, std::move(*reply));
        }
    } catch (...) {
        Fail(std::current_exception());
    }
}

std::optional<std::size_t> WorkerPool::NextRequest(std::size_t count) {
    const std::lock_guard lock(m_access);
    return m_stopped || m_next == count ? std::nullopt : std::optional(m_next++);
}

std::optional<WorkerReply> WorkerPool::Process(Worker& worker, const std::string& request) {
    if (!worker.process) {
        auto started = std::make_unique<ChildProcess>(m_settings.program, m_settings.arguments);
        const std::lock_guard lock(m_access);
        worker.process = std::move(started);
    }
    {
        const std::lock_guard lock(m_access);
        if (m_stopped)
            return std::nullopt;
        worker.deadline = Clock::now() + m_settings.longestCase;
    }
    m_changed.notify_all();
    WorkerReply reply;
    std::string line;
    if (worker.process->Write(request + '\n') && worker.process->ReadLine(line))
        reply.line = std::move(line);
    else
        reply.failure = "the worker has ended with " + worker.process->AwaitEnd();
    std::unique_ptr<ChildProcess> ended;
    const std::lock_guard lock(m_access);
    worker.deadline.reset();
    const bool wasLate = std::exchange(worker.isLate, false);
    if (!reply.line || wasLate)
        ended = std::move(worker.process);
    if (reply.line)
        return reply;
    if (wasLate)
        reply.failure = "the case has not ended after " + FormatDuration(m_settings.longestCase.count());
    return m_stopped ? std::nullopt : std::optional(std::move(reply));
}

void WorkerPool::KillLateOnes() {
    std::unique_lock lock(m_access);
    while (!m_done) {
        auto next = Clock::time_point::max();
        for (Worker& each : m_workers) {
            if (!each.deadline || each.isLate)
                continue;
            if (*each.deadline <= Clock::now()) {
                each.isLate = true;
                each.process->Kill();
            } else {
                next = std::min(next, *each.deadline);
            }
        }
        if (next == Clock::time_point::max())
            m_changed.wait(lock);
        else
            m_changed.wait_until(lock, next);
    }
}

void WorkerPool::Fail(std::exception_ptr failure) noexcept {
    {
        const std::lock_guard lock(m_access);
        if (!m_failure)
            m_failure = std::move(failure);
    }
    Stop();
}

} // namespace vant::host
