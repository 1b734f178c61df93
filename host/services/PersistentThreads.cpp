#include "host/services/PersistentThreads.h"

#include "host/record/CallScope.h"
#include "platform/Clock.h"
#include "platform/Thread.h"
#include "platform/Utf8.h"

#include <algorithm>
#include <fmt/format.h>
#include <thread>
#include <utility>

namespace vant::host {

/// What a thread works on. It is shared, so that its last user releases it outside the lock.
struct PersistentThreads::Work {
    CComPtr<IThreadCallback> callback;
    CComPtr<IUnknown> command; ///< Its identity; null if the host does not know it.
    std::string commandId;
};

/// Under which names and for which command a thread works. Made before it starts, because a thread cannot
/// report that memory has run out.
struct PersistentThreads::Setting {
    std::wstring systemName;
    std::string journalName;
    std::string commandId;
    std::size_t depth = 0; ///< Of the command that started the thread.
};

struct PersistentThreads::Thread {
    const std::uint32_t cookie;
    const std::uint32_t step;
    /// Signalled when the thread has ended or the threads have been closed.
    Event released{Event::Kind::ManualReset};
    // Protected by the lock.
    WorkPtr work; ///< Until the callback has returned.
    std::jthread thread;
    bool running = true;
    bool registered = true;
};

namespace {

// Of the calling thread, if it is one of these.
thread_local const void* currentThread = nullptr;
thread_local std::uint32_t currentStep = 0;

} // namespace

PersistentThreads::PersistentThreads(EndObserver ended, Event& changed, std::uint32_t lastCookie)
    : m_ended(std::move(ended)), m_changed(changed), m_lastCookie(lastCookie) {}

PersistentThreads::~PersistentThreads() {
    End();
}

HRESULT PersistentThreads::Start(IThreadCallback& callback, std::wstring_view name, std::uint32_t& cookie) {
    JoinEnded();
    auto work = std::make_shared<Work>();
    work->callback = &callback;
    if (IUnknown* const command = CurrentCommandObject()) {
        void** const identity = reinterpret_cast<void**>(&work->command);
        if (const HRESULT code = command->QueryInterface(IID_IUnknown, identity); FAILED(code))
            return code;
    }
    work->commandId = CurrentCommand();

    const std::lock_guard lock(m_access);
    if (m_closed)
        return E_ABORT;
    if (RunningCount() >= maxLiveThreads)
        return HRESULT_FROM_WIN32(ERROR_MAX_THRDS_REACHED);
    const std::uint32_t newCookie = m_lastCookie + 1;
    Setting setting{std::wstring(name), fmt::format("{} {}", ToUtf8(name), newCookie), work->commandId,
                    CommandDepth()};
    const ThreadPtr thread(new Thread{.cookie = newCookie,
                                      .step = currentThread ? currentStep : m_step.load(),
                                      .work = work,
                                      .thread = {}});
    const auto entry = m_threads.emplace(newCookie, thread).first;
    try {
        thread->thread = std::jthread([this, thread, work = std::move(work), setting = std::move(setting),
                                       place = ClockPlace()]() mutable {
            const ClockParticipant participant(std::move(place));
            Run(*thread, std::move(work), std::move(setting));
        });
    } catch (...) {
        m_threads.erase(entry);
        throw;
    }
    cookie = m_lastCookie = newCookie;
    return S_OK;
}

void PersistentThreads::Run(Thread& thread, WorkPtr work, Setting setting) noexcept {
    currentThread = &thread;
    currentStep = thread.step;
    NameThisThread(setting.systemName);
    const ThreadScope threadScope(std::move(setting.journalName));
    CommandScope commandScope(std::move(setting.commandId), work->command.Get(), setting.depth);

    const HRESULT result = work->callback->RunOnThread();
    commandScope.SetObject(nullptr);
    {
        const std::lock_guard lock(m_access);
        thread.work.reset();
    }
    work.reset(); // Releases the command, unless another thread is just stopping it.
    if (m_ended)
        m_ended(thread.cookie, result);
    {
        const std::lock_guard lock(m_access);
        thread.running = false;
    }
    thread.released.Set();
    m_changed.Set();
}

HRESULT PersistentThreads::Forget(std::uint32_t cookie) {
    const std::lock_guard lock(m_access);
    if (m_endedCookies.erase(cookie) != 0)
        return S_OK;
    const auto entry = m_threads.find(cookie);
    if (entry == m_threads.end() || !entry->second->registered)
        return HRESULT_FROM_WIN32(ERROR_NOT_FOUND);
    entry->second->registered = false;
    return S_OK;
}

HRESULT PersistentThreads::IsRunning(std::uint32_t cookie) const {
    bool hasEnded = false;
    const ThreadPtr thread = Find(cookie, hasEnded);
    if (!thread)
        return hasEnded ? S_FALSE : HRESULT_FROM_WIN32(ERROR_NOT_FOUND);
    const std::lock_guard lock(m_access);
    return thread->running ? S_OK : S_FALSE;
}

HRESULT PersistentThreads::WaitFor(std::uint32_t cookie) const {
    bool hasEnded = false;
    const ThreadPtr thread = Find(cookie, hasEnded);
    if (!thread)
        return hasEnded ? S_OK : HRESULT_FROM_WIN32(ERROR_NOT_FOUND);
    if (thread.get() == currentThread)
        return HRESULT_FROM_WIN32(ERROR_POSSIBLE_DEADLOCK);
    thread->released.Wait(INFINITE);
    const std::lock_guard lock(m_access);
    return thread->running ? E_ABORT : S_OK;
}

HRESULT PersistentThreads::StopCommand(std::string_view commandId) {
    const std::vector<WorkPtr> found =
        WorkWhere([commandId](const Work& work) { return work.commandId == commandId; });
    if (found.empty())
        return HRESULT_FROM_WIN32(ERROR_NOT_FOUND);
    HRESULT result = S_OK;
    for (const WorkPtr& work : found) {
        if (const HRESULT code = Stop(work); FAILED(code))
            result = code;
    }
    return result;
}

HRESULT PersistentThreads::Stop(const WorkPtr& work) {
    CComPtr<IVantPersistentCommand> command;
    const HRESULT code = work->command.QueryInterface(&command);
    if (FAILED(code))
        return code;
    std::list<WorkPtr> entry{work};
    const auto place = entry.begin();
    {
        const std::lock_guard lock(m_access);
        m_stopping.splice(m_stopping.end(), entry);
    }
    command->Stop();
    const std::lock_guard lock(m_access);
    entry.splice(entry.end(), m_stopping, place);
    return code;
}

std::optional<std::string> PersistentThreads::IdOf(IUnknown& command) const {
    CComPtr<IUnknown> identity;
    if (FAILED(command.QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&identity))))
        return std::nullopt;
    const std::lock_guard lock(m_access);
    for (const auto& [cookie, thread] : m_threads) {
        if (thread->work && thread->work->command.Get() == identity.Get())
            return thread->work->commandId;
    }
    for (const WorkPtr& work : m_stopping) {
        if (work->command.Get() == identity.Get())
            return work->commandId;
    }
    return std::nullopt;
}

bool PersistentThreads::IsAnyRunning() const {
    return IsAnyRunning([](const Thread&) { return true; });
}

bool PersistentThreads::IsAnyOfStepRunning() const {
    return IsAnyRunning([step = m_step.load()](const Thread& thread) { return thread.step == step; });
}

void PersistentThreads::Close() noexcept {
    const std::lock_guard lock(m_access);
    m_closed = true;
    for (const auto& [cookie, thread] : m_threads)
        thread->released.Set();
}

void PersistentThreads::Open() noexcept {
    const std::lock_guard lock(m_access);
    m_closed = false;
}

bool PersistentThreads::IsThisThreadOfStep() const noexcept {
    return !currentThread || currentStep == m_step.load();
}

void PersistentThreads::StopOfStep() {
    std::vector<WorkPtr> found;
    {
        const std::lock_guard lock(m_access);
        for (const auto& [cookie, thread] : m_threads) {
            if (thread->work && thread->step == m_step.load())
                found.push_back(thread->work);
        }
    }
    for (const WorkPtr& work : found)
        Stop(work);
}

std::vector<std::string> PersistentThreads::RunningCommands() const {
    std::vector<std::string> ids;
    const std::lock_guard lock(m_access);
    for (const auto& [cookie, thread] : m_threads) {
        if (thread->work)
            ids.push_back(thread->work->commandId);
    }
    return ids;
}

std::uint32_t PersistentThreads::LastCookie() const {
    const std::lock_guard lock(m_access);
    return m_lastCookie;
}

void PersistentThreads::End() {
    Close();
    for (const WorkPtr& work : WorkWhere([](const Work&) { return true; }))
        Stop(work);
    while (IsAnyRunning())
        m_changed.Wait(INFINITE);
    JoinEnded();
}

PersistentThreads::ThreadPtr PersistentThreads::Find(std::uint32_t cookie, bool& hasEnded) const {
    const std::lock_guard lock(m_access);
    hasEnded = m_endedCookies.contains(cookie);
    const auto entry = m_threads.find(cookie);
    return entry != m_threads.end() && entry->second->registered ? entry->second : nullptr;
}

template <class Matches>
bool PersistentThreads::IsAnyRunning(Matches matches) const {
    const std::lock_guard lock(m_access);
    return std::any_of(m_threads.begin(), m_threads.end(),
                       [&](const auto& entry) { return entry.second->running && matches(*entry.second); });
}

template <class Matches>
std::vector<PersistentThreads::WorkPtr> PersistentThreads::WorkWhere(Matches matches) const {
    std::vector<WorkPtr> found;
    const std::lock_guard lock(m_access);
    for (const auto& [cookie, thread] : m_threads) {
        if (thread->work && matches(*thread->work))
            found.push_back(thread->work);
    }
    return found;
}

std::size_t PersistentThreads::RunningCount() const {
    return static_cast<std::size_t>(std::count_if(m_threads.begin(), m_threads.end(),
                                                  [](const auto& entry) { return entry.second->running; }));
}

/// Joins the threads that have ended, so that the system frees what it keeps for them. They have left virtual
/// time, or leave it without waiting for another thread.
void PersistentThreads::JoinEnded() {
    std::vector<std::jthread> ended; // Joined when it is destroyed, outside the lock.
    const std::lock_guard lock(m_access);
    ended.reserve(m_threads.size());
    for (auto entry = m_threads.begin(); entry != m_threads.end();) {
        const auto& [cookie, thread] = *entry;
        if (thread->running) {
            ++entry;
            continue;
        }
        if (thread->registered)
            m_endedCookies.insert(cookie);
        ended.push_back(std::move(thread->thread));
        entry = m_threads.erase(entry);
    }
}

} // namespace vant::host
