#pragma once

// Events and waiting, all through one clock. In real time a wait lasts as long as it says, divided by the
// speed. In virtual time the clock stands still while any participating thread runs, and jumps to the
// earliest deadline when all of them wait; of the participating threads one runs at a time, in the order in
// which they became able to, so that a program does the same in the same order every time. A participating
// thread must therefore not keep a lock that others need while it waits here. Threads that do not participate
// wait in real time.

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>

namespace vant::waiting {

/// A Windows event.
struct Event {
    Event(bool stays, bool isSignalled) noexcept;
    ~Event();
    Event(const Event&) = delete;
    Event& operator=(const Event&) = delete;

    const bool staysSignalled; ///< A manual-reset event.
    bool signalled;
};

/// A thread that waits, for an event or for its turn. It stands in the list of all waiters, so that waiting
/// allocates nothing.
struct Waiter {
    std::condition_variable wake;
    const Event* event = nullptr;
    bool participates = false;
    bool satisfied = false; ///< The event ended the wait.
    bool ready = false;     ///< It participates and waits for its turn alone.
    bool released = false;  ///< The thread may run.
    std::int64_t deadline = 0;
    std::uint64_t readyOrder = 0;
    Waiter* previous = nullptr;
    Waiter* next = nullptr;
};

/// Events that exist in this process.
std::size_t LiveEventCount() noexcept;

/// The clock of this process; any thread.
class Clock {
public:
    static constexpr std::int64_t never = INT64_MAX;

    /// Both only while no thread participates and none waits. `speed` is above 0.
    void UseRealTime(double speed);
    void UseVirtualTime();

    /// Milliseconds since an unspecified moment; in virtual time since that began.
    std::int64_t Now() const;

    void Set(Event& event);
    void Reset(Event& event);
    /// Waits for the event, if there is one, at most so many milliseconds (`never`: without an end). True if
    /// the event ended the wait.
    bool Wait(Event* event, std::int64_t milliseconds);

    /// A place for a thread that is about to begin; null in real time. The order of the calls is the order in
    /// which the threads will run first.
    std::unique_ptr<Waiter> Reserve();
    /// Gives up a place that no thread has taken.
    void Cancel(Waiter& place);
    /// On the new thread: waits until it is its turn, and makes it participate.
    void Enter(Waiter& place);
    /// The calling thread no longer participates.
    void Leave();

private:
    using Lock = std::unique_lock<std::mutex>;

    bool WaitInRealTime(Lock& lock, Waiter& waiter, std::int64_t milliseconds);
    bool WaitInVirtualTime(Lock& lock, Waiter& waiter, std::int64_t milliseconds);
    void Add(Waiter& waiter) noexcept;
    void Remove(Waiter& waiter) noexcept;
    void Satisfy(Waiter& waiter) noexcept;
    void MakeReady(Waiter& waiter) noexcept;
    /// The waiter that runs next: the one that has been ready longest, else the earliest deadline, the wait
    /// that began first coming first. Null if no thread can go on.
    Waiter* Next() const noexcept;
    /// Lets the next one run, unless one is running.
    void GiveTurn() noexcept;
    void EndTurn() noexcept;

    mutable std::mutex m_access;
    double m_speed = 1;
    bool m_virtual = false;
    Waiter* m_first = nullptr; ///< in the order in which they began to wait
    Waiter* m_last = nullptr;
    // Virtual time.
    std::int64_t m_now = 0;
    std::uint64_t m_readied = 0; ///< how many waiters have become ready
    bool m_running = false;      ///< whether a participating thread has its turn
};

Clock& TheClock() noexcept;

} // namespace vant::waiting
