#pragma once

#include "framework/VantCommandImpl.h"
#include "framework/interfaces/ClassIds.h"
#include "platform/ComObject.h"

namespace vant {

/// Looks for the first active fault in a fault array of the engine control module, stores its code and
/// branches.
class CFaultArrayChecker
    : public CComObjectRootEx<CComMultiThreadModel>,
      public CComCoClass<CFaultArrayChecker, &CLSID_FaultArrayChecker>,
      public IVantCommandImpl<CFaultArrayChecker, &CLSID_FaultArrayChecker, resource_FaultArrayChecker> {
public:
    static constexpr PropertyRow properties[] = {
        {L"arrayID", nullptr, true},
        {L"successTransitionID", nullptr, false},
        {L"failTransitionID", nullptr, false},
        {L"dsFaultCode", nullptr, false},
    };

protected:
    void ExecuteCommand() override;

private:
    void Check() const;
};

} // namespace vant
