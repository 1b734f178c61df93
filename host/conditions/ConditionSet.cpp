#include "host/conditions/ConditionSet.h"

#include "host/engine/objects/EngineAccess.h"
#include "host/object/HandOut.h"
#include "host/object/VariantValue.h"
#include "host/record/Json.h"
#include "host/record/Vocabulary.h"

#include <algorithm>

namespace vant::host {

namespace {

/// The type in which the values of a condition are compared.
VARTYPE ComparedType(const Condition& condition) {
    if (!condition.otherEntry.empty())
        return IsOrder(condition.comparison) ? VT_R8 : VT_BSTR;
    if (std::holds_alternative<std::string>(condition.value))
        return VT_BSTR;
    return std::holds_alternative<bool>(condition.value) ? VT_BOOL : VT_R8;
}

} // namespace

HRESULT ConditionSet::Evaluate(VARIANT_BOOL* allMet) {
    return Perform(operation::Evaluate, [&](Record& record) -> HRESULT {
        record.Add(argument::name, m_entry);
        if (!allMet)
            return E_POINTER;
        *allMet = VARIANT_FALSE;
        if (const auto recorded = ReturnRecorded(record, *allMet))
            return *recorded;
        const Condition* failed = nullptr;
        const Condition* met = nullptr; // The one that is enough.
        Outcome outcome;
        for (const Condition& condition : m_conditions.list) {
            Outcome each = Check(condition);
            if (each.holds && !m_conditions.any)
                continue;
            if (each.holds) {
                failed = nullptr;
                met = &condition;
                break;
            }
            // That a condition could not be read says more than that another one does not hold.
            if (!failed || (FAILED(each.code) && SUCCEEDED(outcome.code))) {
                failed = &condition;
                outcome = std::move(each);
            }
            if (!m_conditions.any)
                break;
        }
        if (failed)
            return RecordFailure(record, *failed, outcome);
        *allMet = VARIANT_TRUE;
        if (met)
            record.Add(argument::met, Describe(*met));
        record.Add(argument::allMet, true);
        return S_OK;
    });
}

std::optional<HRESULT> ConditionSet::ReturnRecorded(Record& record, VARIANT_BOOL& allMet) {
    const auto recorded = m_engine ? m_engine->RecordedEvaluationOf(m_entry) : std::nullopt;
    if (!recorded)
        return std::nullopt;
    allMet = recorded->allMet ? VARIANT_TRUE : VARIANT_FALSE;
    const auto failed =
        std::find_if(m_conditions.list.begin(), m_conditions.list.end(), [&](const Condition& each) {
            return m_conditions.any || Describe(each) == recorded->failed;
        });
    if (!recorded->failed.empty() && failed != m_conditions.list.end()) {
        const std::lock_guard lock(m_access);
        m_failed = &*failed;
    }
    if (!recorded->failed.empty())
        record.Add(argument::failed, recorded->failed);
    if (!recorded->failed.empty() && !m_conditions.any && failed != m_conditions.list.end())
        record.Add(failed->kind == Condition::Kind::Parameter ? argument::parameter : argument::data,
                   failed->subject);
    if (!recorded->limits.empty())
        record.Add(argument::limits, recorded->limits);
    if (recorded->value)
        record.Add(argument::value, *recorded->value);
    if (SUCCEEDED(recorded->code))
        record.Add(argument::allMet, recorded->allMet);
    return recorded->code;
}

HRESULT ConditionSet::RecordFailure(Record& record, const Condition& failed, const Outcome& outcome) {
    {
        const std::lock_guard lock(m_access);
        m_failed = &failed;
    }
    record.Add(argument::failed, m_conditions.any ? Describe(m_conditions) : Describe(failed));
    if (!m_conditions.any) {
        record.Add(failed.kind == Condition::Kind::Parameter ? argument::parameter : argument::data,
                   failed.subject);
        const bool isKnown = SUCCEEDED(outcome.code) && !failed.otherEntry.empty();
        record.Add(argument::limits,
                   DescribeLimit(failed) + (isKnown ? " = " + ToJson(outcome.limit).dump() : ""));
    }
    if (FAILED(outcome.code) && !m_conditions.failSafe)
        return outcome.code;
    if (!m_conditions.any)
        record.Add(argument::value, outcome.actual);
    record.Add(argument::allMet, false);
    return S_OK;
}

HRESULT ConditionSet::GetFailureKey(BSTR* key) {
    return Perform(operation::GetFailureKey, [&](Record& record) -> HRESULT {
        record.Add(argument::name, m_entry);
        if (!key)
            return E_POINTER;
        *key = nullptr;
        const Condition* failed = nullptr;
        {
            const std::lock_guard lock(m_access);
            failed = m_failed;
        }
        if (!failed)
            return HRESULT_FROM_WIN32(ERROR_NOT_FOUND);
        record.Add(argument::key, failed->message);
        return HandOutText(failed->message, key);
    });
}

ConditionSet::Outcome ConditionSet::Check(const Condition& condition) const {
    Outcome outcome;
    CComVariant actual;
    CComVariant other;
    outcome.code = Read(condition, actual);
    if (SUCCEEDED(outcome.code) && !condition.otherEntry.empty())
        outcome.code = ReadEntry(condition.otherEntry, ComparedType(condition), other);
    if (FAILED(outcome.code))
        return outcome;
    outcome.actual = ToValue(actual.Get());
    outcome.limit = condition.otherEntry.empty() ? condition.value : ToValue(other.Get());
    outcome.holds = Holds(condition.comparison, outcome.actual, outcome.limit);
    return outcome;
}

/// Reads the subject of a condition, and converts it to the type in which it is compared.
HRESULT ConditionSet::Read(const Condition& condition, CComVariant& value) const {
    const VARTYPE type = ComparedType(condition);
    if (condition.kind == Condition::Kind::Data)
        return ReadEntry(condition.subject, type, value);
    if (!m_engine)
        return HRESULT_FROM_WIN32(ERROR_NOT_FOUND);
    if (type == VT_BSTR) {
        // The text that screens show.
        CComBSTR text;
        const HRESULT code = ReadText(*m_engine, condition.subject, text);
        value = CComVariant(std::move(text));
        return code;
    }
    const HRESULT code = ReadValue(*m_engine, condition.subject, value);
    return FAILED(code) ? code : value.ChangeType(type, lcidEnglishUS);
}

HRESULT ConditionSet::ReadEntry(const std::string& name, VARTYPE type, CComVariant& value) const {
    const HRESULT code = m_data.Read(ToWide(name), value);
    return FAILED(code) ? code : value.ChangeType(type, lcidEnglishUS);
}

} // namespace vant::host
