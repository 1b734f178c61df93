#pragma once

#include "framework/VantCommandImpl.h"
#include "framework/interfaces/ClassIds.h"
#include "platform/ComObject.h"

namespace vant {

/// Shows a text from the data store in a message box and waits until the technician has closed it.
class CMessageDisplayer
    : public CComObjectRootEx<CComMultiThreadModel>,
      public CComCoClass<CMessageDisplayer, &CLSID_MessageDisplayer>,
      public IVantCommandImpl<CMessageDisplayer, &CLSID_MessageDisplayer, resource_MessageDisplayer> {
public:
    static constexpr PropertyRow properties[] = {
        {L"dsString", nullptr, true},
    };

protected:
    void ExecuteCommand() override;
};

} // namespace vant
