#include "commands/PropertySetter.h"

#include "ecm/ResultPolicy.h"

namespace vant {

void CPropertySetter::ExecuteCommand() {
    CCheckedResult result;
    const CComBSTR value = ExpandParameterReferences(ReadRawValue());
    const CComBSTR name = GetProperty(L"propertyName");
    const CComBSTR component = GetProperty(L"componentID");
    result = SetComponentProperty(component, name, value);
}

CComBSTR CPropertySetter::ReadRawValue() const {
    if (HasProperty(L"value"))
        return GetProperty(L"value");
    if (HasProperty(L"dsValue")) {
        CCheckedResult result;
        CComVariant value;
        result = GetDataStoreValue(GetProperty(L"dsValue"), value);
        CComBSTR text = CComBSTR::Copy(StringMember(value.Get()));
        result = value.Clear(); // fails for a type that does not exist
        return text;
    }
    if (HasProperty(L"pValue"))
        return ReadParameterText(GetProperty(L"pValue"));
    return CComBSTR();
}

} // namespace vant
