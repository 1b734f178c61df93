#pragma once

#include "framework/VantCommandImpl.h"
#include "framework/interfaces/ClassIds.h"
#include "platform/ComObject.h"

namespace vant {

/// Writes one value into one parameter of the engine control module.
class CParameterWriter
    : public CComObjectRootEx<CComMultiThreadModel>,
      public CComCoClass<CParameterWriter, &CLSID_ParameterWriter>,
      public IVantCommandImpl<CParameterWriter, &CLSID_ParameterWriter, resource_ParameterWriter> {
public:
    static constexpr PropertyRow properties[] = {
        {L"parameterID", L"dsParameterID", true},
        {L"value", L"dsValue", true},
    };

protected:
    void ExecuteCommand() override;

private:
    CComVariant ReadValue() const;
};

} // namespace vant
