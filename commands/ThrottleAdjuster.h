#pragma once

#include "framework/VantPersistentCommandImpl.h"
#include "framework/interfaces/ClassIds.h"
#include "platform/ComObject.h"

namespace vant {

/// Steps the throttle command within the engine's limits until the engine speed lies in its band, and chooses
/// a transition. The throttle stays as it was commanded last.
class CThrottleAdjuster : public CComObjectRootEx<CComMultiThreadModel>,
                          public CComCoClass<CThrottleAdjuster, &CLSID_ThrottleAdjuster>,
                          public IVantPersistentCommandImpl<CThrottleAdjuster, &CLSID_ThrottleAdjuster,
                                                            resource_ThrottleAdjuster, 0> {
public:
    static constexpr PropertyRow properties[] = {
        {L"successTransition", nullptr, true},
        {L"failTransition", nullptr, true},
    };

protected:
    void ExecutePersistent() override;

private:
    void Adjust();
};

} // namespace vant
