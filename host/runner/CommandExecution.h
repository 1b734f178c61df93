#pragma once

#include "host/procedure/Procedure.h"
#include "host/record/CallScope.h"
#include "host/record/Journal.h"
#include "host/runner/CommandFactory.h"
#include "host/services/Services.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>

namespace vant::host {

/// The greatest depth of commands that run or start one another; a thread that a command starts is one level
/// deeper than the command. A request that would go deeper gets HRESULT_FROM_WIN32(ERROR_STACK_OVERFLOW).
inline constexpr std::size_t maxCommandDepth = 32;

/// Creates and executes the commands of a procedure, and records the phases of each one's life. Any thread
/// may call.
class CommandExecution {
public:
    /// Called with each entry that a command is about to write.
    using OnExpectedResult = std::function<void(const std::string& entry)>;
    /// Called for a command that has succeeded without writing an entry that it must write.
    using OnMissingResult = std::function<void(const std::string& commandId, const std::string& entry)>;

    /// All references must stay valid. The services need not exist yet.
    CommandExecution(const Procedure& procedure, const CommandFactory& factory, Journal& journal,
                     Services& services, OnExpectedResult expected, OnMissingResult missing)
        : m_procedure(procedure), m_factory(factory), m_journal(journal), m_services(services),
          m_expected(std::move(expected)), m_missing(std::move(missing)) {}

    /// Runs a command on the calling thread and returns its result; E_INVALIDARG for an unknown id.
    HRESULT Run(const std::string& id);

    /// An entry of the data store was written.
    void NoteWrite(const std::string& entry);
    bool HasWritten(const std::string& entry) const { return LastWrite(entry) != 0; }

    /// A command that runs on was stopped, so it need not write its results.
    void NoteStop(const std::string& id);
    /// Checks the results of a command whose thread has ended. Run checks those of the others.
    void CheckResultsOfEnded(const std::string& id);

private:
    /// `scope` receives the object before it is executed. `phase` becomes the last phase that was begun.
    HRESULT CreateAndExecute(const Command& command, CComPtr<IVantCommand>& object, CommandScope& scope,
                             const char*& phase);
    /// `before`: the number of writes before the command.
    void CheckResults(const Command& command, const std::string& id, std::uint64_t before);
    /// Before a command is executed; returns the number of writes so far.
    std::uint64_t NoteBegin(const std::string& id, bool runsOn);
    std::uint64_t LastWrite(const std::string& entry) const;

    const Procedure& m_procedure;
    const CommandFactory& m_factory;
    Journal& m_journal;
    Services& m_services;
    const OnExpectedResult m_expected;
    const OnMissingResult m_missing;
    mutable std::mutex m_access; ///< Protects what follows.
    std::uint64_t m_writes = 0;
    std::map<std::string, std::uint64_t> m_begun; ///< The number of writes before each command that runs on.
    std::map<std::string, std::uint64_t> m_lastWrite; ///< The number of the last write of each entry.
};

} // namespace vant::host
