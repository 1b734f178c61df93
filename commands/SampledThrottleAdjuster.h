#pragma once

#include "framework/VantCommandImpl.h"
#include "framework/interfaces/ClassIds.h"
#include "platform/ComObject.h"

namespace vant {

/// Steps the throttle command until the engine speed lies in its band, then checks a status and chooses a
/// transition. Neither the command nor the number of steps is limited, and it cannot be stopped; each step
/// takes 5 s on the thread that executes the command.
class CSampledThrottleAdjuster
    : public CComObjectRootEx<CComMultiThreadModel>,
      public CComCoClass<CSampledThrottleAdjuster, &CLSID_SampledThrottleAdjuster>,
      public IVantCommandImpl<CSampledThrottleAdjuster, &CLSID_SampledThrottleAdjuster,
                              resource_SampledThrottleAdjuster> {
public:
    static constexpr PropertyRow properties[] = {
        {L"successTransition", nullptr, true},
        {L"failTransition", nullptr, true},
    };

protected:
    void ExecuteCommand() override;

private:
    void Adjust() const;
};

} // namespace vant
