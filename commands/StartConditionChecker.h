#pragma once

#include "framework/VantCommandImpl.h"
#include "framework/interfaces/ClassIds.h"
#include "platform/ComObject.h"

namespace vant {

/// Evaluates a condition set once and chooses a transition by the result. If a condition does not hold, it
/// first copies that condition's message.
class CStartConditionChecker : public CComObjectRootEx<CComMultiThreadModel>,
                               public CComCoClass<CStartConditionChecker, &CLSID_StartConditionChecker>,
                               public IVantCommandImpl<CStartConditionChecker, &CLSID_StartConditionChecker,
                                                       resource_StartConditionChecker> {
public:
    static constexpr PropertyRow properties[] = {
        {L"dsSetID", nullptr, true},
        {L"dsFailMessage", nullptr, false},
        {L"validTransitionID", nullptr, false},
        {L"invalidTransitionID", nullptr, false},
    };

protected:
    void ExecuteCommand() override;

private:
    void ChooseOptional(PropertyName transition) const;
};

} // namespace vant
