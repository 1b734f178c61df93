#include "host/engine/model/Inertia.h"

#include <cmath>

namespace vant::host {

namespace {

constexpr double SecondsOf(std::int64_t steps) noexcept {
    return static_cast<double>(steps * engineStep) / 1000;
}

} // namespace

double Decay(double x) noexcept {
    if (!(x < 700))
        return 0; // Too small to change any sum in this file.
    // e^-x = 2^-n * e^-r, where n * ln 2 + r = x and r is small. ln 2 in two parts keeps r exact.
    constexpr double ln2High = 0x1.62e42fee00000p-1;
    constexpr double ln2Low = 0x1.a39ef35793c76p-33;
    const int n = static_cast<int>(std::lround(x * 1.4426950408889634));
    const double r = (x - n * ln2High) - n * ln2Low;
    double power = 1;
    for (int term = 15; term > 0; --term)
        power = 1 - r * power / term;
    return std::ldexp(power, -n);
}

Inertia::Inertia(double start, double lag, double rate) noexcept
    : m_lag(lag), m_rate(rate), m_decayOfStep(lag > 0 ? Decay(SecondsOf(1) / lag) : 0), m_input(start),
      m_from(start) {}

double Inertia::At(std::int64_t step) const noexcept {
    const std::int64_t steps = step - m_since;
    if (steps == 0)
        return m_from;
    const double distance = m_from - m_input;
    if (m_lag > 0)
        return m_input + distance * (steps == 1 ? m_decayOfStep : Decay(SecondsOf(steps) / m_lag));
    const double way = m_rate * SecondsOf(steps);
    if (std::abs(distance) <= way)
        return m_input;
    return distance > 0 ? m_from - way : m_from + way;
}

void Inertia::Follow(double input, std::int64_t step) noexcept {
    if (input == m_input)
        return;
    m_from = At(step);
    m_since = step;
    m_input = input;
}

} // namespace vant::host
