#include "host/services/CommandRunner.h"

namespace vant::host {

HRESULT CommandRunner::RunCommand(BSTR commandId) {
    return Answer("RunCommand", [&](Record& record) {
        const std::string id = ToUtf8(TextOf(commandId));
        record.Add("commandId", id);
        return m_run(id);
    });
}

HRESULT CommandRunner::RunCommandFromThread(BSTR commandId) {
    return Answer("RunCommandFromThread", [&](Record& record) {
        const std::string id = ToUtf8(TextOf(commandId));
        record.Add("commandId", id);
        return m_run(id);
    });
}

} // namespace vant::host
