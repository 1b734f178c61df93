#include "platform/Clock.h"

#include "platform/Waiting.h"

#include <utility>

#ifdef _WIN32
#include "platform/windows/TimeRedirection.h"

#include <atomic>
#endif

namespace vant {

#ifdef _WIN32

namespace {

std::atomic<bool> redirected{false};

/// The system's own time is left to itself for as long as it serves.
void RedirectProgram() {
    if (!redirected.exchange(true))
        RedirectTime(GetModuleHandleW(nullptr));
}

} // namespace

void TakeTimeFromHere(const void* address) noexcept {
    HMODULE library = nullptr;
    if (redirected && GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                                             GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                                         static_cast<const wchar_t*>(address), &library))
        RedirectTime(library);
}

#else

namespace {

/// Every wait goes through the clock already.
void RedirectProgram() {}

} // namespace

void TakeTimeFromHere(const void*) noexcept {}

#endif

void UseRealTime(double speed) noexcept {
    if (speed != 1)
        RedirectProgram();
    waiting::TheClock().UseRealTime(speed);
}

void UseVirtualTime() noexcept {
    RedirectProgram();
    waiting::TheClock().UseVirtualTime();
}

std::int64_t ClockMilliseconds() noexcept {
    return waiting::TheClock().Now();
}

ClockPlace::ClockPlace() : m_waiter(waiting::TheClock().Reserve()) {}

ClockPlace::~ClockPlace() {
    if (m_waiter)
        waiting::TheClock().Cancel(*m_waiter);
}

ClockParticipant::ClockParticipant(ClockPlace place) {
    if (const auto waiter = std::move(place.m_waiter)) {
        waiting::TheClock().Enter(*waiter);
        m_takesPart = true;
    }
}

ClockParticipant::~ClockParticipant() {
    if (m_takesPart)
        waiting::TheClock().Leave();
}

ClockPlace::ClockPlace(ClockPlace&& other) noexcept = default;

} // namespace vant
