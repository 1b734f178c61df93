#include "host/services/CommandRunner.h"

#include "host/record/Vocabulary.h"

namespace vant::host {

HRESULT CommandRunner::RunCommand(BSTR commandId) {
    return Perform(operation::RunCommand, [&](Record& record) {
        const std::string id = ToUtf8(TextOf(commandId));
        record.Add(argument::commandId, id);
        return m_run(id);
    });
}

HRESULT CommandRunner::RunCommandFromThread(BSTR commandId) {
    return Perform(operation::RunCommandFromThread, [&](Record& record) {
        const std::string id = ToUtf8(TextOf(commandId));
        record.Add(argument::commandId, id);
        return m_run(id);
    });
}

} // namespace vant::host
