#include "host/suite/Replay.h"

#include "host/record/ReportText.h"
#include "host/record/Vocabulary.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace vant::host {

namespace {

using Fields = std::vector<FaultFieldDescription>;

std::int64_t NumberIn(const Record& record, std::string_view name, std::int64_t otherwise) {
    const Value* const value = record.Find(name);
    const auto* const number = value ? std::get_if<std::int64_t>(value) : nullptr;
    return number ? *number : otherwise;
}

std::string IdOf(const Record& record) {
    const Value* const id = record.Find(argument::id);
    const auto* const text = id ? std::get_if<std::string>(id) : nullptr;
    return text ? *text : id ? Readable(*id) : std::string();
}

EngineError ErrorOf(HRESULT code) {
    switch (code) {
    case HRESULT_FROM_WIN32(ERROR_NOT_FOUND):
        return EngineError::NotFound;
    case E_ACCESSDENIED:
        return EngineError::ReadOnly;
    case E_BOUNDS:
        return EngineError::OutOfLimits;
    case HRESULT_FROM_WIN32(ERROR_READ_FAULT):
        return EngineError::ReadFailed;
    default:
        return EngineError::WrongKind;
    }
}

/// The faults that commands have looked at. The calls on lists, records and fields follow one another on
/// their thread.
class FaultsReader {
public:
    FaultsReader(FaultArrays& arrays, EngineRecording& recording)
        : m_arrays(arrays), m_recording(recording) {}

    void Take(const Record& call) {
        Place& place = m_places[call.thread];
        if (call.operation == operation::GetParameter && SUCCEEDED(call.result.value_or(E_FAIL)) &&
            NumberIn(call, argument::kind, 0) == faultArrayKind) {
            place.array = IdOf(call);
            m_arrays[place.array];
        } else if (call.service == service::FaultArray) {
            EndList(place);
            place.time = call.time;
            place.isOpen = true;
        } else if (call.service == service::FaultRecordList && call.operation == operation::get_Count) {
            place.records.resize(
                std::max(place.records.size(), static_cast<std::size_t>(NumberIn(call, argument::count, 0))));
        } else if (call.service == service::FaultRecordList) {
            place.record = Index(call);
            place.records.resize(std::max(place.records.size(), place.record + 1));
        } else if (call.service == service::FaultRecord && place.record < place.records.size()) {
            TakeRecord(call, place);
        } else if (call.service == service::FaultField) {
            TakeField(call, place);
        }
    }

    void End() {
        for (auto& [thread, place] : m_places)
            EndList(place);
    }

private:
    static constexpr std::int64_t faultArrayKind = 2;

    /// Where the calls of a thread are.
    struct Place {
        std::string array{};
        std::int64_t time = 0; ///< Of the list of records.
        bool isOpen = false;
        std::vector<Fields> records{};
        std::size_t record = 0;
        std::size_t field = 0;
    };

    /// Counted from 1 in calls; a wrong one counts as the first.
    static std::size_t Index(const Record& call) {
        return static_cast<std::size_t>(std::max<std::int64_t>(NumberIn(call, argument::index, 1), 1)) - 1;
    }

    static void TakeRecord(const Record& call, Place& place) {
        Fields& fields = place.records[place.record];
        const std::size_t count = call.operation == operation::get_Count
                                      ? static_cast<std::size_t>(NumberIn(call, argument::count, 0))
                                      : (place.field = Index(call)) + 1;
        fields.resize(std::max(fields.size(), count));
    }

    static void TakeField(const Record& call, Place& place) {
        if (place.record >= place.records.size() || place.field >= place.records[place.record].size())
            return;
        FaultFieldDescription& field = place.records[place.record][place.field];
        (call.operation == operation::get_Name ? field.name : field.value) = call.Text(argument::value);
    }

    void EndList(Place& place) {
        if (!std::exchange(place.isOpen, false))
            return;
        std::vector<FaultRecordDescription>& all = m_arrays[place.array];
        std::vector<std::size_t> present;
        for (Fields& fields : std::exchange(place.records, {})) {
            std::size_t number = 0;
            // The same record may stand in a list more than once.
            while (number < all.size() && (!IsSame(all[number].fields, fields) || Contains(present, number)))
                ++number;
            if (number == all.size())
                all.push_back({.fields = std::move(fields), .until = {}, .when = {}, .clearedBy = {}});
            present.push_back(number);
        }
        m_recording.faultRecords[place.array].Add(place.time, std::move(present));
    }

    static bool Contains(const std::vector<std::size_t>& numbers, std::size_t number) {
        return std::find(numbers.begin(), numbers.end(), number) != numbers.end();
    }

    static bool IsSame(const Fields& a, const Fields& b) {
        return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const auto& one, const auto& other) {
            return one.name == other.name && one.value == other.value;
        });
    }

    FaultArrays& m_arrays;
    EngineRecording& m_recording;
    std::map<std::string, Place> m_places; ///< By thread.
};

class PlanMaker {
public:
    ReplayPlan Make(std::span<const Record> journal) {
        for (const Record& each : journal)
            Take(each);
        m_faults.End();
        // Texts take every value that is written.
        for (auto& [id, parameter] : m_plan.engine.parameters)
            parameter.value = std::string();
        m_plan.engine.recording = std::make_shared<const EngineRecording>(std::move(m_recording));
        return std::move(m_plan);
    }

private:
    void Take(const Record& record) {
        if (record.service == service::Runner)
            TakeEvent(record);
        else if (record.service == service::Parameter || record.service == service::SessionItem)
            TakeReading(record);
        else if (record.service == service::ConditionSet && record.operation == operation::Evaluate)
            TakeEvaluation(record);
        else if (record.operation == operation::SetParameter)
            TakeWrite(record);
        else
            TakeRest(record);
        m_faults.Take(record);
    }

    void TakeEvent(const Record& record) {
        if (record.operation == event::PromptShown)
            m_shown[record.thread] = record.time;
        if (record.operation != event::PromptClosed)
            return;
        const std::string by = record.Text(argument::by);
        auto& answer = m_plan.answers.emplace_back();
        if (const Value* const value = record.Find(argument::answer); value && !by.empty() && by != "default")
            answer = Answer{*value, "operator", record.time - m_shown[record.thread]};
    }

    void TakeReading(const Record& call) {
        const std::string id = IdOf(call);
        EngineParameter& parameter = m_plan.engine.parameters[id];
        const Value* const value = call.Find(argument::value);
        if (call.operation == operation::get_Name) {
            parameter.name = call.Text(argument::value);
        } else if (call.operation == operation::get_UnitsKey) {
            parameter.unitsKey = call.Text(argument::value);
        } else if (FAILED(call.result.value_or(S_OK))) {
            m_recording.readings[id].Add(call.time, ErrorOf(*call.result));
        } else if (value) {
            const auto* const text =
                call.operation == operation::get_Text ? std::get_if<std::string>(value) : nullptr;
            m_recording.readings[id].Add(call.time,
                                         Reading{*value, text ? std::optional(*text) : std::nullopt});
        }
    }

    void TakeEvaluation(const Record& call) {
        const Value* const allMet = call.Find(argument::allMet);
        RecordedEvaluation evaluation{.code = call.result.value_or(S_OK),
                                      .allMet = allMet && *allMet == Value(true),
                                      .failed = call.Text(argument::failed),
                                      .limits = call.Text(argument::limits)};
        if (const Value* const value = call.Find(argument::value))
            evaluation.value = *value;
        m_recording.evaluations[call.Text(argument::name)].Add(call.time, std::move(evaluation));
    }

    void TakeWrite(const Record& call) {
        const HRESULT code = call.result.value_or(S_OK);
        if (code == E_ABORT)
            return; // The host refused it.
        const std::string id = IdOf(call);
        // One that does not exist must not exist in a replay.
        if (code != HRESULT_FROM_WIN32(ERROR_NOT_FOUND))
            m_plan.engine.parameters[id];
        m_recording.writes[id].Add(call.time, FAILED(code) ? std::optional(ErrorOf(code))
                                                           : std::optional<EngineError>());
    }

    void TakeRest(const Record& call) {
        if (call.service == service::Connection && call.Find(argument::value))
            m_plan.engine.connection = call.Text(argument::value);
        else if (call.service == service::UnitsTable && SUCCEEDED(call.result.value_or(E_FAIL)))
            m_plan.engine.units[m_unitsKey[call.thread] = call.Text(argument::unitsKey)];
        else if (call.service == service::Unit)
            m_plan.engine.units[m_unitsKey[call.thread]] = call.Text(argument::value);
        else if (call.service == service::ProtocolSourceD && call.Find(argument::kind))
            m_plan.engine.protocol = static_cast<std::int32_t>(NumberIn(call, argument::kind, 0));
        else if (call.operation == operation::GetParameter && SUCCEEDED(call.result.value_or(E_FAIL)) &&
                 NumberIn(call, argument::kind, 0) == 1)
            m_plan.engine.parameters[IdOf(call)];
        else if (FAILED(call.result.value_or(S_OK)))
            TakeFailedStep(call);
    }

    void TakeFailedStep(const Record& call) {
        constexpr std::pair<const char*, ProtocolStep> steps[] = {
            {operation::GetProtocolSource, ProtocolStep::GetProtocolSource},
            {operation::GetA, ProtocolStep::GetA},
            {operation::GetB, ProtocolStep::GetB},
            {operation::GetC, ProtocolStep::GetC},
            {operation::GetD, ProtocolStep::GetD},
            {operation::get_Kind, ProtocolStep::GetKind}};
        for (const auto& [operation, step] : steps) {
            if (call.operation == operation && *call.result == E_FAIL)
                m_plan.engine.protocolFails = step;
        }
    }

    ReplayPlan m_plan;
    EngineRecording m_recording;
    FaultsReader m_faults{m_plan.engine.faultArrays, m_recording};
    std::map<std::string, std::int64_t> m_shown;   ///< When prompts appeared, by thread.
    std::map<std::string, std::string> m_unitsKey; ///< The last one that a thread asked for.
};

} // namespace

std::optional<Answer> RecordedOperator::Ask(const Prompt& /*prompt*/,
                                            const std::function<bool()>& /*isOver*/) {
    const std::lock_guard lock(m_access);
    return m_next < m_answers.size() ? m_answers[m_next++] : std::nullopt;
}

ReplayPlan PlanReplay(std::span<const Record> journal) {
    return PlanMaker().Make(journal);
}

std::vector<Record> ComparableRecords(std::span<const Record> journal) {
    std::vector<Record> records;
    for (const Record& each : journal) {
        const bool isEvent = each.service == service::Runner;
        if (isEvent && (each.operation == event::ParameterGiven || each.operation == event::ParameterLeft))
            continue;
        Record& kept = records.emplace_back(each);
        const char* const hidden = each.operation == event::PromptClosed  ? argument::by
                                   : each.operation == event::PromptShown ? argument::text
                                                                          : nullptr;
        if (isEvent && hidden)
            std::erase_if(kept.arguments,
                          [hidden](const Argument& argument) { return argument.name == hidden; });
    }
    return records;
}

} // namespace vant::host
