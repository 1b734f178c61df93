#pragma once

#include "platform/system.h"

#include <cstdint>
#include <memory>

namespace vant {

namespace waiting {
struct Waiter;
}

// The time in which this process waits: what Sleep and WaitForSingleObject last, also in the command module.
// On Windows, other time than the system's own reaches this program and the libraries that it then loads as
// DynamicLibrary or names to TakeTimeFromHere.

/// Real time, which is what a process begins with; `speed` times as fast if that is not 1. Only while no
/// thread takes part in virtual time and none waits. `speed` is above 0.
VANT_PLATFORM_API void UseRealTime(double speed = 1) noexcept;

/// Virtual time, beginning at 0: it stands still while any thread that takes part in it runs, and goes on to
/// the next deadline when all of them wait. Of these threads one runs at a time, in an order that is the same
/// every time, so none may keep a lock that others need while it waits, nor wait by other means, such as
/// joining a thread that has not left. Under the same conditions as UseRealTime.
VANT_PLATFORM_API void UseVirtualTime() noexcept;

/// Makes the library in which an address lies wait in the same time as this program.
VANT_PLATFORM_API void TakeTimeFromHere(const void* address) noexcept;

/// The time that has passed, in milliseconds since an unspecified moment; in virtual time since that began.
VANT_PLATFORM_API std::int64_t ClockMilliseconds() noexcept;

/// A place in virtual time for a thread that is about to be started, made by the thread that starts it. From
/// then on time waits for the new thread. Threads run first in the order of their places.
class VANT_PLATFORM_API ClockPlace {
public:
    ClockPlace();
    ClockPlace(ClockPlace&& other) noexcept;
    ClockPlace& operator=(ClockPlace&&) = delete;
    /// Gives up a place that no thread has taken.
    ~ClockPlace();

private:
    friend class ClockParticipant;
    std::unique_ptr<waiting::Waiter> m_waiter;
};

/// While it lives, the calling thread takes part in virtual time. In real time it does nothing.
class VANT_PLATFORM_API ClockParticipant {
public:
    /// Returns once it is the thread's turn to run. The thread must not take part yet.
    explicit ClockParticipant(ClockPlace place = ClockPlace());
    ~ClockParticipant();
    ClockParticipant(const ClockParticipant&) = delete;
    ClockParticipant& operator=(const ClockParticipant&) = delete;

private:
    bool m_takesPart = false;
};

} // namespace vant
