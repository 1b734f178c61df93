#pragma once

#include "framework/VantCommandImpl.h"
#include "framework/interfaces/ClassIds.h"
#include "platform/ComObject.h"

namespace vant {

/// Ends another command of the procedure, typically a persistent one that is still running.
class CCommandTerminator
    : public CComObjectRootEx<CComMultiThreadModel>,
      public CComCoClass<CCommandTerminator, &CLSID_CommandTerminator>,
      public IVantCommandImpl<CCommandTerminator, &CLSID_CommandTerminator, resource_CommandTerminator> {
public:
    static constexpr PropertyRow properties[] = {
        {L"commandID", nullptr, true},
    };

protected:
    void ExecuteCommand() override;
};

} // namespace vant
