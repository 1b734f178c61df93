#include "commands/CommandTerminator.h"

#include "ecm/ResultPolicy.h"

namespace vant {

void CCommandTerminator::ExecuteCommand() {
    if (!HasProperty(L"commandID"))
        return;
    CCheckedResult result;
    result = TerminateCommand(GetProperty(L"commandID"));
}

} // namespace vant
