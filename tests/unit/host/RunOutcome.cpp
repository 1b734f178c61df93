#include "tests/unit/host/RunOutcome.h"

#include "host/procedure/ProcedureReader.h"
#include "host/record/Vocabulary.h"
#include "host/runner/Runner.h"
#include "tests/support/VirtualTime.h"
#include "tests/unit/host/BuiltModule.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <stdexcept>
#include <utility>

namespace vant::host {

namespace {

/// Creates what another factory creates, except commands of one class.
class BrokenFactory final : public CommandFactory {
public:
    BrokenFactory(const CommandFactory& factory, std::string broken)
        : m_factory(factory), m_broken(std::move(broken)) {}
    HRESULT Create(std::string_view className, CComPtr<IVantCommand>& command) const override {
        if (className == m_broken)
            throw std::runtime_error("broken");
        return m_factory.Create(className, command);
    }
    bool CanUnload() const override { return m_factory.CanUnload(); }

private:
    const CommandFactory& m_factory;
    const std::string m_broken;
};

RunOutcome RunWith(const CommandFactory& factory, const Procedure& procedure, const RunSettings& settings,
                   const RecordFilter& abortAt, const std::function<void(Runner&, RunOutcome&)>& run) {
    RunOutcome outcome;
    Journal journal;
    Runner runner(procedure, factory, journal, settings);
    journal.Observe([&](const Record& record) {
        outcome.records.push_back(record);
        if (abortAt && abortAt(record))
            runner.Abort();
    });
    run(runner, outcome);
    EXPECT_TRUE(factory.CanUnload());
    outcome.reason = outcome.records.back().Text(argument::reason);
    return outcome;
}

} // namespace

std::vector<Record> RunOutcome::Of(std::string_view operation, std::string_view command) const {
    std::vector<Record> found;
    for (const Record& record : records) {
        if (record.operation == operation && (command.empty() || record.command == command))
            found.push_back(record);
    }
    return found;
}

std::int64_t RunOutcome::TimeOf(std::string_view operation, std::string_view command) const {
    const auto found = Of(operation, command);
    EXPECT_FALSE(found.empty()) << operation << ' ' << command;
    return found.empty() ? -1 : found.front().time;
}

std::string RunOutcome::Path() const {
    std::vector<std::string> steps;
    for (const Record& record : Of(event::StepEntered))
        steps.push_back(fmt::format("{}:{}", record.Text(argument::step), record.time));
    return fmt::format("{}", fmt::join(steps, " "));
}

std::string RunOutcome::Executed() const {
    std::vector<std::string> ids;
    for (const Record& record : Of(event::CommandEnded))
        ids.push_back(record.command);
    return fmt::format("{}", fmt::join(ids, " "));
}

std::vector<std::string> RunOutcome::LeftIn(std::string_view entry) const {
    std::vector<std::string> values;
    for (const Record& record : Of(event::DataLeft)) {
        if (record.Text(argument::name) == entry)
            values.push_back(record.Text(argument::value));
    }
    return values;
}

RecordFilter IsOperation(std::string operation) {
    return [operation = std::move(operation)](const Record& record) { return record.operation == operation; };
}

Procedure ProcedureOf(const std::string& toml) {
    Diagnostics found;
    Procedure procedure = ReadProcedure(toml, found);
    EXPECT_FALSE(found.HasErrors()) << found.Print("f");
    return procedure;
}

RunOutcome RunProcedure(const Procedure& procedure, const RunSettings& settings,
                        const RecordFilter& abortAt) {
    const test::VirtualTime time;
    const LoadedModule module(test::BuiltModuleFile());
    return RunWith(module, procedure, settings, abortAt, [](Runner& runner, RunOutcome& outcome) {
        outcome.verdict = runner.Run();
        EXPECT_TRUE(runner.StillHeld().empty());
    });
}

RunOutcome RunWithBrokenClass(const Procedure& procedure, const std::string& brokenClass) {
    const test::VirtualTime time;
    const LoadedModule module(test::BuiltModuleFile());
    const BrokenFactory factory(module, brokenClass);
    return RunWith(factory, procedure, {}, {}, [](Runner& runner, RunOutcome&) {
        EXPECT_THROW(runner.Run(), std::runtime_error);
        EXPECT_TRUE(runner.StillHeld().empty());
    });
}

} // namespace vant::host
