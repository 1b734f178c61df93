#pragma once

#include "platform/system.h"
#include "tests/support/TestHost.h"

#include <memory>
#include <string>
#include <vector>

namespace vant::test {

/// A condition set in an entry of the host's data store, which goes with it. Calls are noted by, and can be
/// made to fail at, the TestHost: `QueryInterface(IConditionSet)`, `Evaluate()`, `GetFailureKey()`. Must
/// outlive what holds it.
class ConditionSet {
public:
    ConditionSet(TestHost& host, const std::wstring& entry);
    ~ConditionSet();
    ConditionSet(const ConditionSet&) = delete;
    ConditionSet& operator=(const ConditionSet&) = delete;

    /// What Evaluate returns, call by call, even if it fails; the last one is repeated.
    std::vector<VARIANT_BOOL> answers = {VARIANT_TRUE};
    /// Evaluate leaves the caller's flag as it is.
    bool leavesFlag = false;
    std::wstring failureKey = L"failure";

    /// The object; lent.
    IUnknown* Object() noexcept;

private:
    class Set;

    TestHost& m_host;
    const std::wstring m_entry;
    std::unique_ptr<Set> m_set;
};

} // namespace vant::test
