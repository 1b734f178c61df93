#include "commands/ParameterLoader.h"

#include "ecm/ResultPolicy.h"

namespace vant {

void CParameterLoader::ExecuteCommand() {
    try {
        Load();
    } catch (...) {
        // Ends quietly; the entry keeps its value.
    }
}

void CParameterLoader::Load() const {
    CCheckedResult result;
    CComVariant value = ReadParameterValue(GetProperty(L"parameterID"));
    result = value.ChangeType(VT_BSTR);
    result = SetDataStoreValue(GetProperty(L"dsLocation"), value);
}

} // namespace vant
