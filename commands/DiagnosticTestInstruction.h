#pragma once

#include "framework/VantCommandImpl.h"
#include "framework/interfaces/ClassIds.h"
#include "platform/ComObject.h"

namespace vant {

/// Shows the technician an instruction from the data store, with "$p(NAME)" replaced by the current text of
/// parameter NAME.
class CDiagnosticTestInstruction
    : public CComObjectRootEx<CComMultiThreadModel>,
      public CComCoClass<CDiagnosticTestInstruction, &CLSID_DiagnosticTestInstruction>,
      public IVantCommandImpl<CDiagnosticTestInstruction, &CLSID_DiagnosticTestInstruction,
                              resource_DiagnosticTestInstruction> {
public:
    static constexpr PropertyRow properties[] = {
        {L"dsValue", nullptr, true},
    };

protected:
    void ExecuteCommand() override;
};

} // namespace vant
