#pragma once

#include "host/engine/model/EngineDescription.h"
#include "host/engine/model/EngineError.h"
#include "host/engine/model/LiveFault.h"
#include "host/engine/model/LiveParameter.h"
#include "host/engine/model/Recording.h"
#include "host/record/TimeSource.h"
#include "platform/Clock.h"

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace vant::host {

/// The parameters and faults of a simulated engine, which change during a run by themselves and by writes. A
/// reading depends on the time, on the writes and their times, and on the seed. It depends on other reads
/// only if the parameter's behaviour counts them. Ids are UTF-8. Any thread may call.
class Engine {
public:
    /// The engine begins now. Every id that a parameter follows or a fault watches must exist, and no
    /// parameter may follow itself, directly or through others.
    explicit Engine(const std::map<std::string, EngineParameter>& parameters, std::uint64_t seed = 0,
                    TimeSource clock = ClockMilliseconds, const FaultArrays& faultArrays = {});
    explicit Engine(const EngineDescription& description, TimeSource clock = ClockMilliseconds)
        : Engine(description.parameters, description.seed, std::move(clock), description.faultArrays) {
        if (description.recording)
            m_recording = *description.recording;
    }

    /// The current value and its text. NotFound or ReadFailed.
    Expected<Reading> Read(const std::string& id) const;

    /// A value of the kind that can be written. NotFound or ReadOnly.
    Expected<Value> WritableKind(const std::string& id) const;
    /// Makes `value` the parameter's value, or the one it moves to, and removes the text that replaces the
    /// value's own. Returns nothing on success; otherwise the parameter stays as it was: NotFound, ReadOnly,
    /// WrongKind or OutOfLimits.
    std::optional<EngineError> Write(const std::string& id, Value value);

    /// A parameter that was written and does not have the value of the beginning.
    struct Left {
        std::string id;
        Value value; ///< As written.
        Value was;
    };
    /// All of them, by id.
    std::vector<Left> LeftWritten() const;

    /// How a condition set was evaluated, if the engine has a recording with that set.
    std::optional<RecordedEvaluation> RecordedEvaluationOf(const std::string& conditionSet) const;

    /// The records that a fault array has now: their places in the description, from 0, in order. None if
    /// there is no such array.
    std::vector<std::size_t> FaultRecords(const std::string& array) const;

private:
    /// The next item of a timeline of the recording; null if there is none. Under m_access.
    template <class Items>
    auto* Recorded(Items EngineRecording::*items, const std::string& name) const {
        using Item = std::remove_pointer_t<decltype(((*m_recording).*items).begin()->second.Next(0))>;
        if (!m_recording)
            return static_cast<Item*>(nullptr);
        const auto found = ((*m_recording).*items).find(name);
        return found == ((*m_recording).*items).end() ? nullptr : found->second.Next(m_clock() - m_began);
    }
    void BeginParameters();
    void BeginFaults(const FaultArrays& faultArrays);
    /// The parameters, each after those that it follows.
    std::vector<LiveParameter*> InOrder();
    /// Takes every input that has changed by now, and returns the milliseconds since the engine began.
    std::int64_t Advance() const;
    /// The step after m_step at which an input changes by itself, or a delayed one arrives.
    std::int64_t NextChange() const;
    void TakeInputs() const;
    /// Whether an input of m_stateful or m_changingFaults may move after m_step: change other than at
    /// scheduled times, by writes and by arrivals.
    bool AnyInputMoves() const;

    const TimeSource m_clock;
    const std::int64_t m_began;
    mutable std::mutex m_access;
    /// Mutable: reads are counted, and bring them up to date.
    mutable std::map<std::string, LiveParameter> m_parameters;
    std::vector<LiveParameter*> m_order;    ///< Each after those that it follows.
    std::vector<LiveParameter*> m_stateful; ///< Those of m_order that take inputs.
    std::vector<std::int64_t> m_schedule;   ///< The steps at which inputs change by themselves, in order.
    std::map<std::string, std::vector<LiveFault>> m_faultArrays;
    std::vector<LiveFault*> m_changingFaults; ///< Those of m_faultArrays that may come or go.
    mutable bool m_moves = false;             ///< Whether an input may move before the next scheduled change.
    mutable std::int64_t m_step = 0;          ///< The step up to which inputs have been taken.
    std::uint64_t m_writes = 0;
    mutable std::optional<EngineRecording> m_recording; ///< Answers reads and writes, if there is one.
};

} // namespace vant::host
