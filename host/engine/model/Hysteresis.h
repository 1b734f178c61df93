#pragma once

#include <cmath>

namespace vant::host {

// What depends on where a number has been.

/// Is on once a number has reached one limit, and off once it has reached the other.
class Switch {
public:
    /// The limits differ. With `on` above `off` the switch is on at high numbers, otherwise at low ones. It
    /// begins off.
    Switch(double on, double off) noexcept : m_on(on), m_off(off) {}

    bool IsOn() const noexcept { return m_isOn; }
    void Take(double number) noexcept {
        const bool rising = m_on > m_off;
        if (rising ? number >= m_on : number <= m_on)
            m_isOn = true;
        else if (rising ? number <= m_off : number >= m_off)
            m_isOn = false;
    }

private:
    double m_on;
    double m_off;
    bool m_isOn = false;
};

/// A number that stays where it is until its input lies more than a width away, and then goes there.
class StickingNumber {
public:
    StickingNumber(double start, double width) noexcept : m_number(start), m_width(width) {}

    double Number() const noexcept { return m_number; }
    void Take(double input) noexcept {
        if (std::abs(input - m_number) > m_width)
            m_number = input;
    }

private:
    double m_number;
    double m_width;
};

} // namespace vant::host
