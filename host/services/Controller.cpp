#include "host/services/Controller.h"

#include "host/record/Vocabulary.h"

namespace vant::host {

HRESULT Controller::TerminateCommand(BSTR commandId) {
    return Perform(operation::TerminateCommand, [&](Record& record) {
        const std::string id = ToUtf8(TextOf(commandId));
        record.Add(argument::commandId, id);
        return m_threads.StopCommand(id);
    });
}

HRESULT Controller::PersistentCommandStopped(IVantPersistentCommand* command) {
    return Perform(operation::PersistentCommandStopped, [&](Record& record) -> HRESULT {
        if (!command)
            return E_POINTER;
        const std::optional<std::string> id = m_threads.IdOf(*command);
        if (!id)
            return HRESULT_FROM_WIN32(ERROR_NOT_FOUND);
        record.Add(argument::commandId, *id);
        return S_OK;
    });
}

} // namespace vant::host
