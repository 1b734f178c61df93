#include "host/services/Controller.h"

namespace vant::host {

HRESULT Controller::TerminateCommand(BSTR commandId) {
    return Answer("TerminateCommand", [&](Record& record) {
        const std::string id = ToUtf8(TextOf(commandId));
        record.Add("commandId", id);
        return m_threads.StopCommand(id);
    });
}

HRESULT Controller::PersistentCommandStopped(IVantPersistentCommand* command) {
    return Answer("PersistentCommandStopped", [&](Record& record) -> HRESULT {
        if (!command)
            return E_POINTER;
        const std::optional<std::string> id = m_threads.IdOf(*command);
        if (!id)
            return HRESULT_FROM_WIN32(ERROR_NOT_FOUND);
        record.Add("commandId", *id);
        return S_OK;
    });
}

} // namespace vant::host
