#pragma once

#include "framework/VantPersistentCommandImpl.h"
#include "framework/interfaces/ClassIds.h"
#include "platform/ComObject.h"

namespace vant {

/// Watches a condition set. In the first round in which a condition does not hold, it copies that condition's
/// message, chooses a transition and stops itself.
class CStopConditionMonitor
    : public CComObjectRootEx<CComMultiThreadModel>,
      public CComCoClass<CStopConditionMonitor, &CLSID_StopConditionMonitor>,
      public IVantPersistentCommandImpl<CStopConditionMonitor, &CLSID_StopConditionMonitor,
                                        resource_StopConditionMonitor, 250> {
public:
    static constexpr PropertyRow properties[] = {
        {L"dsSetID", nullptr, true},
        {L"failTransitionID", nullptr, true},
        {L"dsMessageID", nullptr, true},
    };

protected:
    void ExecutePersistent() override;

private:
    void CheckOnce();
};

} // namespace vant
