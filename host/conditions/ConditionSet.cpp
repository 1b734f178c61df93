#include "host/conditions/ConditionSet.h"

#include "host/engine/objects/EngineAccess.h"
#include "host/object/HandOut.h"
#include "host/object/VariantValue.h"
#include "host/record/Vocabulary.h"

namespace vant::host {

namespace {

/// The type in which the values of a condition are compared.
VARTYPE ComparedType(const Condition& condition) {
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
        for (const Condition& condition : m_conditions) {
            CComVariant actual;
            const HRESULT code = Read(condition, actual);
            if (SUCCEEDED(code) && Holds(condition, ToValue(actual.Get())))
                continue;
            {
                const std::lock_guard lock(m_access);
                m_failed = &condition;
            }
            record.Add(argument::failed, Describe(condition));
            if (FAILED(code))
                return code;
            record.Add(argument::value, ToValue(actual.Get()));
            record.Add(argument::allMet, false);
            return S_OK;
        }
        *allMet = VARIANT_TRUE;
        record.Add(argument::allMet, true);
        return S_OK;
    });
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

/// Reads the subject of a condition, and converts it to the type in which it is compared.
HRESULT ConditionSet::Read(const Condition& condition, CComVariant& value) const {
    const VARTYPE type = ComparedType(condition);
    HRESULT code = S_OK;
    if (condition.kind == Condition::Kind::Data) {
        code = m_data.Read(ToWide(condition.subject), value);
    } else if (!m_engine) {
        return HRESULT_FROM_WIN32(ERROR_NOT_FOUND);
    } else if (type == VT_BSTR) {
        // The text that screens show.
        CComBSTR text;
        code = ReadText(*m_engine, condition.subject, text);
        value = CComVariant(std::move(text));
        return code;
    } else {
        code = ReadValue(*m_engine, condition.subject, value);
    }
    return FAILED(code) ? code : value.ChangeType(type, lcidEnglishUS);
}

} // namespace vant::host
