#pragma once

#include "framework/interfaces/HostServices.h"
#include "host/object/HostObject.h"
#include "host/record/Vocabulary.h"

#include <functional>
#include <string>
#include <utility>

namespace vant::host {

/// Lets commands run other commands of the procedure.
class CommandRunner final : public HostObject<ICommandRunner> {
public:
    /// Creates and executes the command of that id on the calling thread, and returns its result.
    using Run = std::function<HRESULT(const std::string& commandId)>;

    CommandRunner(CallGate& gate, Run run)
        : HostObject(gate, service::CommandRunner), m_run(std::move(run)) {}

    HRESULT STDMETHODCALLTYPE RunCommand(BSTR commandId) override;
    /// Does the same as RunCommand: the command runs on the calling thread.
    HRESULT STDMETHODCALLTYPE RunCommandFromThread(BSTR commandId) override;

private:
    const Run m_run;
};

} // namespace vant::host
