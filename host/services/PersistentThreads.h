#pragma once

#include "framework/interfaces/ThreadService.h"
#include "framework/interfaces/VantCommand.h"
#include "platform/ComPtr.h"
#include "platform/Event.h"
#include "platform/system.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
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

/// The number of threads that may run at once. A request for one more fails with
/// HRESULT_FROM_WIN32(ERROR_MAX_THRDS_REACHED).
inline constexpr std::size_t maxLiveThreads = 64;

/// The threads on which the persistent commands of one run work. In the journal a thread has the name of its
/// registration followed by its cookie. It takes part in virtual time, and works for the command that was at
/// work when it was started, one level deeper than that command.
///
/// Any thread may call, unless stated otherwise. Nothing here holds a lock while it waits or calls out.
class PersistentThreads {
public:
    /// Called when the callback of a thread has returned, with the thread's cookie and the callback's result:
    /// on that thread, under its name and command, before waits for the thread end. Several threads may end
    /// at once. Must not throw.
    using EndObserver = std::function<void(std::uint32_t cookie, HRESULT result)>;

    /// `ended` may be empty. `changed` is signalled each time a thread has ended; it must outlive this
    /// object. Cookies are counted from the one after `lastCookie`.
    PersistentThreads(EndObserver ended, Event& changed, std::uint32_t lastCookie = 0);
    /// Does what End does.
    ~PersistentThreads();
    PersistentThreads(const PersistentThreads&) = delete;
    PersistentThreads& operator=(const PersistentThreads&) = delete;

    /// Starts a thread that calls `callback` once, and sets `cookie` to the next number. The callback
    /// and the object of the current command are held until the call has returned. E_ABORT once closed;
    /// HRESULT_FROM_WIN32(ERROR_MAX_THRDS_REACHED) while maxLiveThreads run.
    HRESULT Start(IThreadCallback& callback, std::wstring_view name, std::uint32_t& cookie);

    // By cookie; HRESULT_FROM_WIN32(ERROR_NOT_FOUND) for one that was never issued or has been forgotten.

    /// Forgets the cookie. Its thread continues.
    HRESULT Forget(std::uint32_t cookie);
    /// S_OK while the thread runs, S_FALSE afterwards.
    HRESULT IsRunning(std::uint32_t cookie) const;
    /// Waits until the thread has ended. HRESULT_FROM_WIN32(ERROR_POSSIBLE_DEADLOCK) on that thread itself;
    /// E_ABORT if the threads are closed before it has ended.
    HRESULT WaitFor(std::uint32_t cookie) const;

    /// Calls Stop of every running command of that id. HRESULT_FROM_WIN32(ERROR_NOT_FOUND) if none runs,
    /// E_NOINTERFACE if one of them cannot be stopped; the others are stopped nevertheless. What Stop returns
    /// is ignored: it is what the controller returned to the command.
    HRESULT StopCommand(std::string_view commandId);
    /// The id of `command` if it runs or is just being stopped; nothing otherwise.
    std::optional<std::string> IdOf(IUnknown& command) const;

    /// Begins a step. Threads that the runner's thread starts from now on belong to it; a thread that is
    /// started by another one belongs to the step of that one.
    void EnterStep() noexcept { ++m_step; }
    bool IsAnyRunning() const;
    /// Whether a thread of the step that was begun last runs.
    bool IsAnyOfStepRunning() const;

    /// From now on no thread is started. Waits for threads end.
    void Close() noexcept;
    /// Undoes Close once all threads have ended.
    void Open() noexcept;
    /// Whether the calling thread is the runner's or one of the step that was begun last.
    bool IsThisThreadOfStep() const noexcept;
    /// Stops every running command of the step that was begun last.
    void StopOfStep();
    /// The commands that run, by the cookies of their threads; a command that is not known is "".
    std::vector<std::string> RunningCommands() const;
    /// The last cookie that was given.
    std::uint32_t LastCookie() const;
    /// Closes, stops every running command, and waits until all threads have ended. One thread at a time.
    void End();

private:
    struct Work;
    struct Setting;
    struct Thread;
    using WorkPtr = std::shared_ptr<Work>;
    using ThreadPtr = std::shared_ptr<Thread>;

    /// Null for a cookie that was never given or has been forgotten, and for one whose thread has been joined
    /// already; `hasEnded` is true for the latter alone.
    ThreadPtr Find(std::uint32_t cookie, bool& hasEnded) const;
    template <class Matches>
    bool IsAnyRunning(Matches matches) const;
    /// The work of every command that runs and matches, in the order of the cookies.
    template <class Matches>
    std::vector<WorkPtr> WorkWhere(Matches matches) const;
    /// The whole life of a thread, on that thread.
    void Run(Thread& thread, WorkPtr work, Setting setting) noexcept;
    HRESULT Stop(const WorkPtr& work);
    std::size_t RunningCount() const;
    void JoinEnded();

    const EndObserver m_ended;
    Event& m_changed;
    std::atomic<std::uint32_t> m_step{0};
    mutable std::mutex m_access; ///< Protects what follows.
    bool m_closed = false;
    std::uint32_t m_lastCookie;
    std::map<std::uint32_t, ThreadPtr>
        m_threads;                          ///< By cookie; also those that have ended, until they are joined.
    std::set<std::uint32_t> m_endedCookies; ///< Of joined threads; without the forgotten ones.
    /// Work whose command's Stop has been called and has not returned: the command may report to the
    /// controller after its thread has ended.
    std::list<WorkPtr> m_stopping;
};

} // namespace vant::host
