#include "commands/StartConditionChecker.h"

#include "ecm/ResultPolicy.h"

#include <tuple>

namespace vant {

void CStartConditionChecker::ExecuteCommand() {
    const CComPtr<IConditionSet> conditions = ReadConditionSet(GetProperty(L"dsSetID"));
    VARIANT_BOOL allMet = VARIANT_FALSE;
    // Only the flag counts: a set that cannot be evaluated is not met.
    std::ignore = conditions->Evaluate(&allMet);
    if (allMet == VARIANT_TRUE) {
        ChooseOptional(L"validTransitionID");
        return;
    }
    // The message first, so that the screen reached by the transition can show it.
    CCheckedResult result;
    result = SetDataStoreValue(GetProperty(L"dsFailMessage"), ReadFailureMessage(*conditions.Get()));
    ChooseOptional(L"invalidTransitionID");
}

void CStartConditionChecker::ChooseOptional(PropertyName transition) const {
    CCheckedResult result;
    if (HasProperty(transition))
        result = ChooseTransition(transition);
}

} // namespace vant
