#pragma once

#include "framework/VantPersistentCommandImpl.h"
#include "framework/interfaces/ClassIds.h"
#include "platform/ComObject.h"

namespace vant {

/// Takes readings of one parameter at a fixed spacing, stores their mean as text and chooses a transition.
class CParameterSampler : public CComObjectRootEx<CComMultiThreadModel>,
                          public CComCoClass<CParameterSampler, &CLSID_ParameterSampler>,
                          public IVantPersistentCommandImpl<CParameterSampler, &CLSID_ParameterSampler,
                                                            resource_ParameterSampler, 0> {
public:
    static constexpr PropertyRow properties[] = {
        {L"parameterID", nullptr, true},
        {L"period", nullptr, true},
        {L"numSamples", nullptr, true},
        {L"dsTarget", nullptr, true},
        {L"completionTransition", nullptr, false},
        {L"delay", nullptr, false},
    };

protected:
    void ExecutePersistent() override;

private:
    LONG ReadNumber(PropertyName name) const;
    bool IsStoppedWithin(LONG milliseconds);
};

} // namespace vant
