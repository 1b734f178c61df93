#pragma once

#include "host/engine/EngineDescription.h"
#include "host/engine/Inertia.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace vant {

/// One parameter of a simulated engine during a run. Times are milliseconds since the engine began and never
/// go back; steps are multiples of engineStep.
class LiveParameter {
public:
    LiveParameter(const std::string& id, const EngineParameter& description, std::uint64_t seed);

    /// Finds the parameters that this one follows, which must exist and stay where they are.
    void Connect(const std::map<std::string, LiveParameter>& all);

    /// Counts a read; whether it succeeds.
    bool BeginRead(std::int64_t time);
    /// What the read that has begun gives.
    Value Read(std::int64_t time) const;
    /// The text that stands in place of the value's own.
    const std::optional<std::string>& OwnText() const noexcept { return m_text; }

    bool IsReadOnly() const noexcept;
    /// Any value of the parameter's kind shows the kind.
    const Value& Written() const noexcept { return m_value; }
    /// Whether a value lies within the limits. Values that are no number have none.
    bool Admits(const Value& value) const;
    /// `order` rises with every write of the engine.
    void Write(Value value, std::uint64_t order);

    /// Whether the past counts: whether there is anything to follow step by step.
    bool HasInertia() const noexcept { return m_inertia.has_value(); }
    /// Whether the input may change from step to step, rather than at scheduled times and with writes alone.
    bool InputMoves() const;
    /// The times at which the input changes by itself.
    void AddSchedule(std::vector<std::int64_t>& times) const;
    /// For a parameter with inertia: takes the input that it has at a step.
    void TakeInput(std::int64_t step);

private:
    /// What the parameter is, before noise, rounding and failures.
    double Level(std::int64_t time) const;
    double Input(std::int64_t time) const;
    double SourceAt(const Behaviour& behaviour, std::int64_t time) const;
    const LiveParameter& Leader() const;
    const Value& Scripted(std::int64_t time) const;
    double Limited(double number) const;
    Value Shown(double number) const;

    const EngineParameter m_description;
    const std::uint64_t m_noise;
    Value m_value; ///< As written, or from the description.
    std::optional<std::string> m_text;
    std::vector<const LiveParameter*> m_followed;
    std::optional<Inertia> m_inertia;
    std::uint64_t m_writtenAs = 0; ///< Place in the order of writes; 0: never written.
    std::int64_t m_reads = 0;
};

} // namespace vant
