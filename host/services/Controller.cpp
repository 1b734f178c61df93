#include "host/services/Controller.h"

#include "host/services/Codes.h"

namespace vant {

HRESULT Controller::TerminateCommand(BSTR commandId) {
    return Answer("TerminateCommand", [&](Record& record) {
        record.Add("commandId", ToUtf8(TextOf(commandId)));
        return codeNotFound;
    });
}

HRESULT Controller::PersistentCommandStopped(IVantPersistentCommand* command) {
    return Answer("PersistentCommandStopped", [&](Record&) { return command ? codeNotFound : E_POINTER; });
}

} // namespace vant
