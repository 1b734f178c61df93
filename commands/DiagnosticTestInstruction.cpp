#include "commands/DiagnosticTestInstruction.h"

#include <tuple>

namespace vant {

void CDiagnosticTestInstruction::ExecuteCommand() {
    CComBSTR text;
    if (HasProperty(L"dsValue")) {
        std::ignore = GetDataStoreText(GetProperty(L"dsValue"), text);
        text = ExpandParameterReferences(text);
    }
    std::ignore = ShowInstruction(text);
}

} // namespace vant
