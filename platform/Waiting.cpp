#include "platform/Waiting.h"

#include <atomic>
#include <cassert>
#include <chrono>

namespace vant::waiting {

namespace {

std::atomic<std::size_t> liveEvents{0};
thread_local bool participating = false;

std::int64_t RealMicroseconds() {
    static const auto start = std::chrono::steady_clock::now();
    return std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - start)
        .count();
}

} // namespace

Event::Event(bool stays, bool isSignalled) noexcept : staysSignalled(stays), signalled(isSignalled) {
    ++liveEvents;
}

Event::~Event() {
    --liveEvents;
}

std::size_t LiveEventCount() noexcept {
    return liveEvents;
}

Clock& TheClock() noexcept {
    // Never destroyed: threads may still wait when the process ends.
    static union Lasting {
        Lasting() : clock() {}
        ~Lasting() {}
        Clock clock;
    } lasting;
    return lasting.clock;
}

void Clock::UseRealTime(double speed) {
    const Lock lock(m_access);
    assert(!m_first && !m_running);
    m_virtual = false;
    m_speed = speed;
}

void Clock::UseVirtualTime() {
    const Lock lock(m_access);
    assert(!m_first && !m_running);
    m_virtual = true;
    m_now = 0;
}

std::int64_t Clock::Now() const {
    const Lock lock(m_access);
    return m_virtual ? m_now
                     : static_cast<std::int64_t>(static_cast<double>(RealMicroseconds()) * m_speed / 1000);
}

void Clock::Set(Event& event) {
    const Lock lock(m_access);
    for (Waiter* waiter = m_first; waiter; waiter = waiter->next) {
        if (waiter->event != &event || waiter->satisfied || waiter->released)
            continue;
        Satisfy(*waiter);
        if (!event.staysSignalled)
            return;
    }
    event.signalled = true;
}

void Clock::Reset(Event& event) {
    const Lock lock(m_access);
    event.signalled = false;
}

bool Clock::Wait(Event* event, std::int64_t milliseconds) {
    Lock lock(m_access);
    if (event && event->signalled) {
        event->signalled = event->staysSignalled;
        return true;
    }
    if (milliseconds == 0)
        return false;
    Waiter waiter;
    waiter.event = event;
    waiter.participates = participating;
    Add(waiter);
    const bool satisfied = participating ? WaitInVirtualTime(lock, waiter, milliseconds)
                                         : WaitInRealTime(lock, waiter, milliseconds);
    Remove(waiter);
    return satisfied;
}

bool Clock::WaitInRealTime(Lock& lock, Waiter& waiter, std::int64_t milliseconds) {
    const auto released = [&waiter] { return waiter.released; };
    if (milliseconds == never) {
        waiter.wake.wait(lock, released);
    } else {
        const std::chrono::duration<double, std::milli> length(static_cast<double>(milliseconds) /
                                                               (m_virtual ? 1 : m_speed));
        waiter.wake.wait_until(lock,
                               std::chrono::steady_clock::now() +
                                   std::chrono::duration_cast<std::chrono::steady_clock::duration>(length),
                               released);
    }
    return waiter.satisfied;
}

bool Clock::WaitInVirtualTime(Lock& lock, Waiter& waiter, std::int64_t milliseconds) {
    waiter.deadline = milliseconds == never ? never : m_now + milliseconds;
    EndTurn();
    waiter.wake.wait(lock, [&waiter] { return waiter.released; });
    return waiter.satisfied;
}

void Clock::Add(Waiter& waiter) noexcept {
    waiter.previous = m_last;
    (m_last ? m_last->next : m_first) = &waiter;
    m_last = &waiter;
}

void Clock::Remove(Waiter& waiter) noexcept {
    (waiter.previous ? waiter.previous->next : m_first) = waiter.next;
    (waiter.next ? waiter.next->previous : m_last) = waiter.previous;
}

void Clock::Satisfy(Waiter& waiter) noexcept {
    waiter.satisfied = true;
    if (waiter.participates) {
        MakeReady(waiter);
        return;
    }
    waiter.released = true;
    waiter.wake.notify_one();
}

void Clock::MakeReady(Waiter& waiter) noexcept {
    waiter.ready = true;
    waiter.readyOrder = m_readied++;
    GiveTurn();
}

Waiter* Clock::Next() const noexcept {
    Waiter* best = nullptr;
    for (Waiter* waiter = m_first; waiter; waiter = waiter->next) {
        if (!waiter->participates || waiter->released || (!waiter->ready && waiter->deadline == never))
            continue;
        const auto isBetter = [&] {
            if (waiter->ready != best->ready)
                return waiter->ready;
            return waiter->ready ? waiter->readyOrder < best->readyOrder : waiter->deadline < best->deadline;
        };
        if (!best || isBetter())
            best = waiter;
    }
    return best;
}

void Clock::GiveTurn() noexcept {
    Waiter* const next = m_running ? nullptr : Next();
    if (!next)
        return;
    if (!next->ready)
        m_now = next->deadline;
    m_running = true;
    next->released = true;
    next->wake.notify_one();
}

void Clock::EndTurn() noexcept {
    m_running = false;
    GiveTurn();
}

std::unique_ptr<Waiter> Clock::Reserve() {
    const Lock lock(m_access);
    if (!m_virtual)
        return nullptr;
    auto place = std::make_unique<Waiter>();
    place->participates = true;
    Add(*place);
    MakeReady(*place);
    return place;
}

void Clock::Cancel(Waiter& place) {
    const Lock lock(m_access);
    Remove(place);
    if (place.released)
        EndTurn();
}

void Clock::Enter(Waiter& place) {
    assert(!participating);
    Lock lock(m_access);
    place.wake.wait(lock, [&place] { return place.released; });
    Remove(place);
    participating = true;
}

void Clock::Leave() {
    const Lock lock(m_access);
    participating = false;
    EndTurn();
}

} // namespace vant::waiting
