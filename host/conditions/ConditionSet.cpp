#include "host/conditions/ConditionSet.h"

#include "host/services/HandOut.h"

namespace vant {

HRESULT ConditionSet::Evaluate(VARIANT_BOOL* allMet) {
    return Answer("Evaluate", [&](Record& record) -> HRESULT {
        record.Add("name", m_entry);
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
            record.Add("failed", TextOf(condition));
            if (FAILED(code))
                return code;
            record.Add("value", ToValue(actual.Get()));
            record.Add("allMet", false);
            return S_OK;
        }
        *allMet = VARIANT_TRUE;
        record.Add("allMet", true);
        return S_OK;
    });
}

HRESULT ConditionSet::GetFailureKey(BSTR* key) {
    return Answer("GetFailureKey", [&](Record& record) -> HRESULT {
        record.Add("name", m_entry);
        if (!key)
            return E_POINTER;
        *key = nullptr;
        const Condition* failed = nullptr;
        {
            const std::lock_guard lock(m_access);
            failed = m_failed;
        }
        if (!failed)
            return codeNotFound;
        record.Add("key", failed->message);
        return HandOutText(failed->message, key);
    });
}

/// With the type in which it is compared.
HRESULT ConditionSet::Read(const Condition& condition, CComVariant& value) const {
    const bool isParameter = condition.kind == Condition::Kind::Parameter;
    const VARTYPE type = ComparedType(condition);
    if (isParameter && !m_engine)
        return codeNotFound;
    if (isParameter && type == VT_BSTR) {
        // What screens show.
        CComBSTR text;
        const HRESULT code = m_engine->ReadText(condition.subject, text);
        value = CComVariant(std::move(text));
        return code;
    }
    const HRESULT code =
        isParameter ? m_engine->ReadValue(condition.subject, value) : m_store.Read(condition.subject, value);
    return FAILED(code) ? code : value.ChangeType(type, lcidEnglishUS);
}

} // namespace vant
