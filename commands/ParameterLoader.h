#pragma once

#include "framework/VantCommandImpl.h"
#include "framework/interfaces/ClassIds.h"
#include "platform/ComObject.h"

namespace vant {

/// Stores the current value of one parameter of the engine control module, as text, in a data-store entry.
class CParameterLoader
    : public CComObjectRootEx<CComMultiThreadModel>,
      public CComCoClass<CParameterLoader, &CLSID_ParameterLoader>,
      public IVantCommandImpl<CParameterLoader, &CLSID_ParameterLoader, resource_ParameterLoader> {
public:
    static constexpr PropertyRow properties[] = {
        {L"parameterID", nullptr, true},
        {L"dsLocation", nullptr, true},
    };

protected:
    void ExecuteCommand() override;

private:
    void Load() const;
};

} // namespace vant
