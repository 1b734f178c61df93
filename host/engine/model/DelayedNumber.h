#pragma once

#include <cstdint>
#include <deque>
#include <limits>

namespace vant::host {

/// A number that arrives a fixed number of steps after it has been sent, and stays until the next one.
class DelayedNumber {
public:
    /// `start` is the number until the first arrival; `steps` is above 0.
    DelayedNumber(double start, std::int64_t steps) : m_arrived(start), m_lastSent(start), m_steps(steps) {}

    double Number() const noexcept { return m_arrived; }
    /// The step of the next arrival; the greatest number if there is none.
    std::int64_t NextArrival() const noexcept {
        return m_onTheWay.empty() ? std::numeric_limits<std::int64_t>::max() : m_onTheWay.front().arrival;
    }
    /// Sends `number`, which is finite, and takes what has arrived by then. Steps must not decrease.
    void Take(double number, std::int64_t step) {
        if (number != m_lastSent)
            m_onTheWay.push_back({step + m_steps, number});
        m_lastSent = number;
        for (; NextArrival() <= step; m_onTheWay.pop_front())
            m_arrived = m_onTheWay.front().number;
    }

private:
    struct Sent {
        std::int64_t arrival = 0;
        double number = 0;
    };

    double m_arrived;
    double m_lastSent;
    std::int64_t m_steps;
    std::deque<Sent> m_onTheWay;
};

} // namespace vant::host
