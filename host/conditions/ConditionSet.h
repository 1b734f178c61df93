#pragma once

#include "framework/interfaces/ConditionSet.h"
#include "host/conditions/Condition.h"
#include "host/engine/model/Engine.h"
#include "host/object/HostObject.h"
#include "host/object/NamedValues.h"
#include "host/record/Vocabulary.h"

#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace vant::host {

/// Conditions that commands find as an object in the data store. Any thread may call.
class ConditionSet final : public HostObject<IConditionSet> {
public:
    /// `engine` may be null; it and the data must outlive the set. `name` is that of the data-store entry.
    ConditionSet(CallGate& gate, std::string name, std::vector<Condition> conditions, const Engine* engine,
                 const NamedValues& data)
        : HostObject(gate, service::ConditionSet), m_entry(std::move(name)),
          m_conditions(std::move(conditions)), m_engine(engine), m_data(data) {}

    /// Looks at the conditions in their order, up to the first that does not hold, and remembers that one. A
    /// subject that cannot be read, or has no value of the type that is compared, is one that does not hold;
    /// the answer is then the code of that failure. E_POINTER for a null `allMet`.
    HRESULT STDMETHODCALLTYPE Evaluate(VARIANT_BOOL* allMet) override;
    /// The message entry of the condition that was remembered last; HRESULT_FROM_WIN32(ERROR_NOT_FOUND), null
    /// out, while there is none. E_POINTER for a null `key`.
    HRESULT STDMETHODCALLTYPE GetFailureKey(BSTR* key) override;

protected:
    void* FindInterface(REFIID iid) noexcept override {
        return iid == IID_IConditionSet ? static_cast<IConditionSet*>(this) : HostObject::FindInterface(iid);
    }

private:
    HRESULT Read(const Condition& condition, CComVariant& value) const;

    const std::string m_entry;
    const std::vector<Condition> m_conditions;
    const Engine* const m_engine;
    const NamedValues& m_data;
    std::mutex m_access;
    const Condition* m_failed = nullptr;
};

} // namespace vant::host
