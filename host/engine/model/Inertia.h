#pragma once

#include <cstdint>

namespace vant::host {

/// The grid on which a simulated engine keeps its state, in milliseconds.
inline constexpr std::int64_t engineStep = 10;

/// e to the power of -x, for x from 0, within three units in the last place. Made of the four basic
/// operations, so every system has the same bits, which it need not have of std::exp.
double Decay(double x) noexcept;

/// A number that does not follow its input at once: with a first-order lag, or with a limited rate. Between
/// two changes of the input it is a closed form of the time, so looking far ahead costs nothing and looking
/// often changes nothing.
class Inertia {
public:
    /// `lag`: time constant in seconds; `rate`: units per second; the one that is above 0 counts. `start` is
    /// the number, and the input, at step 0.
    Inertia(double start, double lag, double rate) noexcept;

    /// The number at a step, which is not before the last change of the input.
    double At(std::int64_t step) const noexcept;

    /// Whether the number stays what it is at a step for as long as the input does.
    bool IsSettled(std::int64_t step) const noexcept { return At(step) == m_input; }

    /// From this step on, not before an earlier one, the number follows `input`. Both are finite.
    void Follow(double input, std::int64_t step) noexcept;

private:
    double m_lag;
    double m_rate;
    double m_decayOfStep;
    double m_input;
    double m_from;            ///< The number at m_since.
    std::int64_t m_since = 0; ///< The step at which the input has changed last.
};

} // namespace vant::host
