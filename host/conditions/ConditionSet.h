#pragma once

#include "framework/interfaces/ConditionSet.h"
#include "host/conditions/Condition.h"
#include "host/engine/model/Engine.h"
#include "host/object/HostObject.h"
#include "host/object/NamedValues.h"
#include "host/record/Vocabulary.h"

#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vant::host {

/// A set of conditions that the data store holds as an object. Any thread may call.
class ConditionSet final : public HostObject<IConditionSet> {
public:
    /// `name` is the data-store entry. `engine` may be null; it and the data must outlive the set.
    ConditionSet(CallGate& gate, std::string name, Conditions conditions, const Engine* engine,
                 const NamedValues& data)
        : HostObject(gate, service::ConditionSet), m_entry(std::move(name)),
          m_conditions(std::move(conditions)), m_engine(engine), m_data(data) {}

    /// The data-store entry.
    const std::string& Entry() const noexcept { return m_entry; }

    /// Checks the conditions in order up to the first one that does not hold, and remembers that one; if one
    /// is enough, up to the first one that holds, and remembers the first if none does. A condition whose
    /// subject cannot be read, or cannot be converted to the type that is compared, does not hold; if it is
    /// the one that is remembered, the result is the code of that failure. E_POINTER for a null `allMet`.
    HRESULT STDMETHODCALLTYPE Evaluate(VARIANT_BOOL* allMet) override;
    /// Returns the message entry of the condition that was remembered last.
    /// HRESULT_FROM_WIN32(ERROR_NOT_FOUND), null out, if no condition has failed yet; E_POINTER for a null
    /// `key`.
    HRESULT STDMETHODCALLTYPE GetFailureKey(BSTR* key) override;

protected:
    void* FindInterface(REFIID iid) noexcept override {
        return iid == IID_IConditionSet ? static_cast<IConditionSet*>(this) : HostObject::FindInterface(iid);
    }

private:
    struct Outcome {
        bool holds = false;
        HRESULT code = S_OK;
        Value actual{};
        Value limit{}; ///< What it was compared with.
    };

    Outcome Check(const Condition& condition) const;
    HRESULT RecordFailure(Record& record, const Condition& failed, const Outcome& outcome);
    /// Returns what was recorded; nothing if the engine does not come from a recording of this set.
    std::optional<HRESULT> ReturnRecorded(Record& record, VARIANT_BOOL& allMet);
    HRESULT Read(const Condition& condition, CComVariant& value) const;
    HRESULT ReadEntry(const std::string& name, VARTYPE type, CComVariant& value) const;

    const std::string m_entry;
    const Conditions m_conditions;
    const Engine* const m_engine;
    const NamedValues& m_data;
    std::mutex m_access;
    const Condition* m_failed = nullptr;
};

} // namespace vant::host
