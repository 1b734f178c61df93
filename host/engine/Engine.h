#pragma once

#include "host/engine/EngineDescription.h"
#include "host/engine/LiveParameter.h"
#include "platform/Bstr.h"
#include "platform/Clock.h"
#include "platform/Variant.h"

#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace vant {

/// The parameters of a simulated engine as they change during a run, by themselves and by writes. What is
/// read depends on the time, on the writes and their times and on the seed, not on other reads; only what the
/// description counts by reads does. Any thread may call; nobody waits for anything but another call. Ids in
/// UTF-8; an id that does not exist is answered with codeNotFound.
class Engine {
public:
    /// The time in milliseconds, from anywhere; it must not go back.
    using Clock = std::function<std::int64_t()>;

    /// The engine begins now. Every id that a parameter follows must exist, and none may follow itself, be it
    /// through others.
    explicit Engine(const std::map<std::string, EngineParameter>& parameters, std::uint64_t seed = 0,
                    Clock clock = ClockMilliseconds);

    /// The current value, with the parameter's type; codeReadFailed where reads fail.
    HRESULT ReadValue(const std::string& id, CComVariant& value) const;
    /// The current value as text; codeReadFailed where reads fail.
    HRESULT ReadText(const std::string& id, CComBSTR& text) const;
    /// Converts a copy of `value` to the parameter's type under locale 1033 and makes it what the parameter
    /// is or moves to; an own text ends. Otherwise the parameter stays as it was: E_ACCESSDENIED for one that
    /// is read-only or has another source, the conversion's DISP_E_ code where it fails, codeOutOfLimits,
    /// E_INVALIDARG for a value by reference.
    HRESULT Write(const std::string& id, const VARIANT& value);

private:
    /// Begins a read and calls `read` with the parameter and the time; answers its result.
    template <class Read>
    HRESULT WithReadable(const std::string& id, Read read) const;
    /// Milliseconds since the engine began; every input that has changed until then has been taken.
    std::int64_t Advance() const;
    /// The step after m_step at which an input changes by itself.
    std::int64_t NextChange() const;
    void TakeInputs() const;

    const Clock m_clock;
    const std::int64_t m_began;
    mutable std::mutex m_access;
    mutable std::map<std::string, LiveParameter> m_parameters; ///< Reads count, and bring them up to date.
    std::vector<LiveParameter*> m_inert;                       ///< Those whose past counts.
    std::vector<std::int64_t> m_schedule; ///< The steps at which inputs change by themselves, in order.
    bool m_moves = false;                 ///< Whether inputs of m_inert may change all the time.
    mutable std::int64_t m_step = 0;      ///< Up to which inputs have been taken.
    std::uint64_t m_writes = 0;
};

} // namespace vant
