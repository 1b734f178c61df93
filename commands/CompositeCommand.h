#pragma once

#include "framework/VantCommandImpl.h"
#include "framework/interfaces/ClassIds.h"
#include "platform/ComObject.h"

namespace vant {

/// Runs a list of other commands of the procedure, one after another.
class CCompositeCommand
    : public CComObjectRootEx<CComMultiThreadModel>,
      public CComCoClass<CCompositeCommand, &CLSID_CompositeCommand>,
      public IVantCommandImpl<CCompositeCommand, &CLSID_CompositeCommand, resource_CompositeCommand> {
public:
    static constexpr PropertyRow properties[] = {
        {L"commandIDList", nullptr, true},
    };

protected:
    void ExecuteCommand() override;
};

} // namespace vant
