#include "platform/Clock.h"

#include "platform/TimeRedirection.h"
#include "platform/Waiting.h"

#include <utility>

namespace vant {

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
