#pragma once

#include "framework/interfaces/ThreadService.h"
#include "framework/interfaces/VantCommand.h"
#include "host/record/Journal.h"
#include "platform/ComPtr.h"
#include "platform/Event.h"
#include "platform/system.h"

#include <atomic>
#include <cstdint>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace vant::host {

/// The threads on which the persistent commands of one run work. Each bears its registration's name and its
/// cookie in the journal, takes part in virtual time, and works for the command that was at work when it was
/// started. When it ends, an event "ThreadEnded" of the Runner tells cookie and result.
///
/// Any thread may call, unless stated otherwise. Nothing here keeps a lock while it waits or calls out.
class PersistentThreads {
public:
    /// `changed` is signalled each time a thread has ended. Both must outlive this object.
    PersistentThreads(Journal& journal, Event& changed);
    /// As End.
    ~PersistentThreads();
    PersistentThreads(const PersistentThreads&) = delete;
    PersistentThreads& operator=(const PersistentThreads&) = delete;

    /// Starts a thread that calls `callback` once, and gives it the next cookie, counted from 1. The callback
    /// and the object of the current command are held until the call has returned. E_ABORT once closed.
    HRESULT Start(IThreadCallback& callback, std::wstring_view name, std::uint32_t& cookie);

    // By cookie; HRESULT_FROM_WIN32(ERROR_NOT_FOUND) for one that was never given, or is forgotten.

    /// Forgets the cookie. Its thread goes on.
    HRESULT Forget(std::uint32_t cookie);
    /// S_OK while the thread runs, S_FALSE afterwards.
    HRESULT IsRunning(std::uint32_t cookie) const;
    /// Waits until the thread has ended. HRESULT_FROM_WIN32(ERROR_POSSIBLE_DEADLOCK) on that thread itself;
    /// E_ABORT where the threads are closed before it has ended.
    HRESULT WaitFor(std::uint32_t cookie) const;

    /// Calls Stop of every running command of that id. HRESULT_FROM_WIN32(ERROR_NOT_FOUND) where none runs,
    /// E_NOINTERFACE where one cannot be stopped. (What Stop answers is what the controller has answered to
    /// it.)
    HRESULT StopCommand(std::string_view commandId);
    /// The id of the command that `command` is, if it runs or is just being stopped; nothing otherwise.
    std::optional<std::string> IdOf(IUnknown& command) const;

    /// Threads that are started from now on from the runner's thread belong to this step; those that a thread
    /// starts belong to the step of that thread.
    void EnterStep() noexcept { ++m_step; }
    bool IsAnyRunning() const;
    /// Whether a thread of the step that was entered last runs.
    bool IsAnyOfStepRunning() const;

    /// From now on no thread is started. Whoever waits for one goes on.
    void Close() noexcept;
    /// Closes, stops every running command, and waits until all threads have ended. One thread at a time.
    void End();

private:
    struct Work;
    struct Names;
    struct Thread;
    using WorkPtr = std::shared_ptr<Work>;
    using ThreadPtr = std::shared_ptr<Thread>;

    /// Null for a cookie that was never given or is forgotten, and where `hasEnded` becomes true.
    ThreadPtr Find(std::uint32_t cookie, bool& hasEnded) const;
    template <class Matches>
    bool IsAnyRunning(Matches matches) const;
    /// The work of every command that runs and matches, in the order of the cookies.
    template <class Matches>
    std::vector<WorkPtr> WorkWhere(Matches matches) const;
    /// The whole life of a thread, on that thread.
    void Run(Thread& thread, WorkPtr work, Names names) noexcept;
    HRESULT Stop(const WorkPtr& work);
    void JoinEnded();

    Journal& m_journal;
    Event& m_changed;
    std::atomic<std::uint32_t> m_step{0};
    mutable std::mutex m_access; ///< Of what follows.
    bool m_closed = false;
    std::uint32_t m_lastCookie = 0;
    std::map<std::uint32_t, ThreadPtr> m_threads; ///< By cookie; those that have ended go by and by.
    std::set<std::uint32_t> m_endedCookies;       ///< Of those that went and are not forgotten.
    /// Whose Stop has been called and has not returned: it may report to the controller after its thread has
    /// ended.
    std::list<WorkPtr> m_stopping;
};

} // namespace vant::host
