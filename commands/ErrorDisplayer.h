#pragma once

#include "framework/VantCommandImpl.h"
#include "framework/interfaces/ClassIds.h"
#include "platform/ComObject.h"

namespace vant {

/// Requires its property and does nothing.
class CErrorDisplayer
    : public CComObjectRootEx<CComMultiThreadModel>,
      public CComCoClass<CErrorDisplayer, &CLSID_ErrorDisplayer>,
      public IVantCommandImpl<CErrorDisplayer, &CLSID_ErrorDisplayer, resource_ErrorDisplayer> {
public:
    static constexpr PropertyRow properties[] = {
        {L"dsString", nullptr, true},
    };

protected:
    void ExecuteCommand() override;
};

} // namespace vant
