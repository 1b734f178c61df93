#pragma once

#include "host/engine/model/DelayedNumber.h"
#include "host/engine/model/EngineDescription.h"
#include "host/engine/model/Hysteresis.h"
#include "host/engine/model/Inertia.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace vant::host {

/// A time in milliseconds since the engine began, and the number of writes before it. Levels depend on both.
struct Moment {
    std::int64_t time = 0;
    std::uint64_t writes = 0;

    friend bool operator==(const Moment&, const Moment&) = default;
};

/// One parameter of a simulated engine during a run. Times are milliseconds since the engine began and never
/// go back; steps are multiples of engineStep.
class LiveParameter {
public:
    LiveParameter(const std::string& id, const EngineParameter& description, std::uint64_t seed);

    /// Looks up the parameters that this one follows. They must exist, and must not move afterwards.
    void Connect(const std::map<std::string, LiveParameter>& all);
    const std::vector<const LiveParameter*>& Followed() const noexcept { return m_followed; }

    /// Makes the state at the engine's beginning. To be called first for the parameters that this one
    /// follows, and before anything below.
    void Begin();

    /// Counts a read, and returns whether it succeeds.
    bool BeginRead(std::int64_t time);
    /// The result of the read that has begun.
    Value Read(const Moment& moment) const;
    /// The value at a moment, as a read returns it without noise. For a parameter that does not count reads.
    Value QuietValue(const Moment& moment) const;
    /// The text that replaces the value's own, if there is one.
    const std::optional<std::string>& OwnText() const noexcept { return m_text; }

    bool IsReadOnly() const noexcept;
    /// A value of the parameter's kind.
    const Value& Kind() const noexcept { return m_description.value; }
    /// Whether a value lies within the limits. Texts and truth values always do; NaN does not if there is a
    /// limit.
    bool Admits(const Value& value) const;
    /// What was written last; null if nothing was. The value of the beginning is that of Kind.
    const Value* Written() const noexcept { return m_writtenAs == 0 ? nullptr : &m_value; }
    /// `order` rises with every write of the engine.
    void Write(Value value, std::uint64_t order);

    /// Whether the parameter has a state that its input changes, so that the input must be taken in time.
    bool TakesInputs() const noexcept { return m_switch || m_delayed || m_sticking || m_inertia; }
    /// Determines whether the input may change after a step, other than at scheduled times and by writes. To
    /// be called first for the parameters that this one follows.
    void FindMoves(std::int64_t step);
    bool InputMoves() const noexcept { return m_inputMoves; }
    /// Whether the level may change after a step in the same way.
    bool Moves(std::int64_t step) const noexcept {
        return m_inputMoves || (m_inertia && !m_inertia->IsSettled(step));
    }
    /// The times at which the input changes by itself.
    void AddSchedule(std::vector<std::int64_t>& times) const;
    /// Takes the input of that step. To be called first for the parameters that this one follows.
    void TakeInput(std::int64_t step, std::uint64_t writes);
    /// The next step at which a delayed input arrives; the greatest number if none is on its way.
    std::int64_t NextArrival() const noexcept;

private:
    /// The number before noise, rounding and failures, at a moment.
    struct Level {
        Moment at;
        double number = 0;
    };

    double LevelAt(const Moment& moment) const;
    /// Makes the level known, and before it those that it follows from.
    void FindLevel(const Moment& moment) const;
    /// Adds the parameters whose levels must be found before this one's.
    void AddUnknown(const Moment& moment, std::vector<const LiveParameter*>& open) const;
    double InputAt(const Moment& moment) const;
    double SourceAt(const Behaviour& behaviour, const Moment& moment) const;
    double SumAt(const std::vector<Term>& terms, const Moment& moment) const;
    /// Whether the level follows from those of other parameters at the same moment.
    bool TakesLevels() const noexcept { return !m_followed.empty() && !TakesInputs(); }
    bool KnowsLevel(const Moment& moment) const noexcept { return m_level && m_level->at == moment; }
    /// Of the parameters that this one follows, the one written last.
    const LiveParameter& Leader() const;
    const Value& Scripted(std::int64_t time) const;
    double Limited(double number) const;
    Value Shown(double number) const;

    const EngineParameter m_description;
    const std::uint64_t m_noise;
    Value m_value; ///< As written, or from the description.
    std::optional<std::string> m_text;
    std::vector<const LiveParameter*> m_followed;
    // What lies between the source and the level, in this order, if the behaviour has it.
    std::optional<Switch> m_switch;
    std::optional<DelayedNumber> m_delayed;
    std::optional<StickingNumber> m_sticking;
    std::optional<Inertia> m_inertia;
    bool m_inputMoves = false;
    mutable std::optional<Level> m_level; ///< The last one that was computed.
    std::uint64_t m_writtenAs = 0;        ///< Place in the order of writes; 0: never written.
    std::int64_t m_reads = 0;
};

} // namespace vant::host
