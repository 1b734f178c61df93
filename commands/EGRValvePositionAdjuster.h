#pragma once

#include "framework/VantCommandImpl.h"
#include "framework/interfaces/ClassIds.h"
#include "platform/ComObject.h"

namespace vant {

/// Walks the position command of the exhaust gas recirculation valve down to its target, for as long as the
/// engine enables it. The number of steps is not limited, and it cannot be stopped; each step takes 5 s on
/// the thread that executes the command. A transition is chosen on failure only.
class CEGRValvePositionAdjuster
    : public CComObjectRootEx<CComMultiThreadModel>,
      public CComCoClass<CEGRValvePositionAdjuster, &CLSID_EGRValvePositionAdjuster>,
      public IVantCommandImpl<CEGRValvePositionAdjuster, &CLSID_EGRValvePositionAdjuster,
                              resource_EGRValvePositionAdjuster> {
public:
    static constexpr PropertyRow properties[] = {
        {L"failTransition", nullptr, true},
    };

protected:
    void ExecuteCommand() override;

private:
    void Walk() const;
    bool IsEnabled() const;
};

} // namespace vant
