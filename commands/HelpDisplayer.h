#pragma once

#include "framework/VantCommandImpl.h"
#include "framework/interfaces/ClassIds.h"
#include "platform/ComObject.h"

namespace vant {

/// Requires its properties and does nothing.
class CHelpDisplayer : public CComObjectRootEx<CComMultiThreadModel>,
                       public CComCoClass<CHelpDisplayer, &CLSID_HelpDisplayer>,
                       public IVantCommandImpl<CHelpDisplayer, &CLSID_HelpDisplayer, resource_HelpDisplayer> {
public:
    static constexpr PropertyRow properties[] = {
        {L"helpFile", nullptr, true},
        {L"helpIndex", nullptr, true},
    };

protected:
    void ExecuteCommand() override;
};

} // namespace vant
