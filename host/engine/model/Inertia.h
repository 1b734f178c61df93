#pragma once

#include <cstdint>

namespace vant::host {

/// The grid on which a simulated engine keeps its state, in milliseconds.
inline constexpr std::int64_t engineStep = 10;

/// The first step that begins at a time or later.
constexpr std::int64_t StepsUpTo(std::int64_t time) noexcept {
    return (time + engineStep - 1) / engineStep;
}

/// e to the power of -x for x >= 0, within three units in the last place. It uses the four basic operations
/// alone, so every system computes the same bits; std::exp does not guarantee that.
double Decay(double x) noexcept;

/// A number that follows its input with a first-order lag or at a limited rate. Between two changes of the
/// input it is a closed form of the time: looking far ahead costs nothing, and looking often changes nothing.
class Inertia {
public:
    /// `lag` is a time constant in seconds, `rate` is in units per second; one of them is above 0. `start` is
    /// both the number and the input at step 0.
    Inertia(double start, double lag, double rate) noexcept;

    /// The number at a step, which must not lie before the last change of the input.
    double At(std::int64_t step) const noexcept;

    /// Whether the number remains what it is at a step until the input changes.
    bool IsSettled(std::int64_t step) const noexcept { return At(step) == m_input; }

    /// From this step on the number follows `input`, which is finite. Steps must not decrease.
    void Follow(double input, std::int64_t step) noexcept;

private:
    double m_lag;
    double m_rate;
    double m_decayOfStep;
    double m_input;
    double m_from;            ///< The number at m_since.
    std::int64_t m_since = 0; ///< The step at which the input changed last.
};

} // namespace vant::host
