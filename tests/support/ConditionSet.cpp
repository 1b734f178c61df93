#include "tests/support/ConditionSet.h"

#include "framework/interfaces/ConditionSet.h"
#include "tests/support/HostObject.h"

#include <algorithm>
#include <atomic>

namespace vant::test {

class ConditionSet::Set final : public HostObject<IConditionSet> {
public:
    Set(TestHost& host, const ConditionSet& settings) noexcept : HostObject(host), m_settings(settings) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
        return iid == IID_IConditionSet
                   ? HandOut<IConditionSet>(Enter("QueryInterface", "IConditionSet"), *this,
                                            reinterpret_cast<IConditionSet**>(out))
                   : HostObject::QueryInterface(iid, out);
    }
    HRESULT STDMETHODCALLTYPE Evaluate(VARIANT_BOOL* allMet) override {
        const HRESULT code = Enter("Evaluate", "");
        const std::size_t call = std::min(m_evaluations++, m_settings.answers.size() - 1);
        if (!m_settings.leavesFlag)
            *allMet = m_settings.answers[call];
        return code;
    }
    HRESULT STDMETHODCALLTYPE GetFailureKey(BSTR* key) override {
        return ReturnText(Enter("GetFailureKey", ""), m_settings.failureKey, key);
    }

private:
    const ConditionSet& m_settings;
    std::atomic<std::size_t> m_evaluations{0};
};

ConditionSet::ConditionSet(TestHost& host, const std::wstring& entry)
    : m_host(host), m_entry(entry), m_set(std::make_unique<Set>(host, *this)) {
    VARIANT value = {};
    value.vt = VT_UNKNOWN;
    value.punkVal = m_set.get();
    m_host.dataStore.insert_or_assign(m_entry, CComVariant::Copy(value)); // with a reference
}

ConditionSet::~ConditionSet() {
    m_host.dataStore.erase(m_entry);
}

IUnknown* ConditionSet::Object() noexcept {
    return m_set.get();
}

} // namespace vant::test
