#include "commands/CompositeCommand.h"

#include "ecm/ResultPolicy.h"

namespace vant {

void CCompositeCommand::ExecuteCommand() {
    CCheckedResult result;
    const CComBSTR list = GetProperty(L"commandIDList");
    // Identifiers are cut one by one, so that a long list takes no memory. Every space separates: adjacent,
    // leading and trailing ones yield empty identifiers, which are passed to the host like any other.
    std::wstring_view rest = list.Text();
    for (;;) {
        const std::size_t space = rest.find(L' ');
        result = RunCommand(CComBSTR(rest.substr(0, space)));
        if (space == std::wstring_view::npos)
            return;
        rest.remove_prefix(space + 1);
    }
}

} // namespace vant
