#include "commands/StopConditionMonitor.h"

#include "ecm/ResultPolicy.h"

namespace vant {

void CStopConditionMonitor::ExecutePersistent() {
    try {
        CheckOnce();
    } catch (...) {
        // A failure ends only this round.
    }
}

void CStopConditionMonitor::CheckOnce() {
    CCheckedResult result;
    const CComPtr<IConditionSet> conditions = ReadConditionSet(GetProperty(L"dsSetID"));
    VARIANT_BOOL allMet = VARIANT_FALSE;
    result = conditions->Evaluate(&allMet);
    if (allMet == VARIANT_TRUE)
        return;
    const CComVariant message = ReadFailureMessage(*conditions.Get());
    result = SetDataStoreValue(GetProperty(L"dsMessageID"), message);
    result = ChooseTransition(L"failTransitionID");
    result = Stop();
}

} // namespace vant
