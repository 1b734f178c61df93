#pragma once

#include "framework/VantCommandImpl.h"
#include "framework/interfaces/ClassIds.h"
#include "platform/ComObject.h"

namespace vant {

/// Sets one property of one component of the display to a text: literal, from the data store, or the current
/// text of a parameter, with "$p(NAME)" replaced by the current text of parameter NAME.
class CPropertySetter
    : public CComObjectRootEx<CComMultiThreadModel>,
      public CComCoClass<CPropertySetter, &CLSID_PropertySetter>,
      public IVantCommandImpl<CPropertySetter, &CLSID_PropertySetter, resource_PropertySetter> {
public:
    static constexpr PropertyRow properties[] = {
        {L"propertyName", nullptr, true}, //
        {L"componentID", nullptr, true},  //
        {L"pValue", nullptr, false},      // any number of these three may be given;
        {L"value", nullptr, false},       // "value" precedes "dsValue", and "dsValue" "pValue"
        {L"dsValue", nullptr, false},
    };

protected:
    void ExecuteCommand() override;

private:
    CComBSTR ReadRawValue() const;
};

} // namespace vant
