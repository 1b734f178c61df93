#include "host/runner/Runner.h"

#include "host/object/VariantValue.h"
#include "host/record/Vocabulary.h"

#include <fmt/format.h>
#include <utility>

namespace vant::host {

namespace {

Value TextOrNull(const std::string& text) {
    return text.empty() ? Value(nullptr) : Value(text);
}

} // namespace

const char* NameOf(Verdict verdict) {
    switch (verdict) {
    case Verdict::Passed:
        return "passed";
    case Verdict::Failed:
        return "failed";
    default:
        return "aborted";
    }
}

Runner::Runner(const Procedure& procedure, const CommandFactory& factory, Journal& journal)
    : m_procedure(procedure), m_factory(factory), m_journal(journal),
      m_services(
          journal, [this](const std::string& id) { return RunCommand(id); },
          [this](std::uint32_t cookie, HRESULT result) { RecordThreadEnded(cookie, result); },
          procedure.engine, procedure.components, procedure.conditions) {}

Verdict Runner::Run() {
    RecordEvent(event::ProcedureStarted, {{argument::name, m_procedure.name}});
    for (const auto& [name, value] : m_procedure.data) {
        m_services.data.Set(ToWide(name), ToVariant(value));
        RecordEvent(event::DataGiven, {{argument::name, name}, {argument::value, value}});
    }
    for (const auto& [name, conditions] : m_procedure.conditions)
        RecordEvent(event::ConditionsGiven,
                    {{argument::name, name}, {argument::conditions, Describe(conditions)}});
    Ending ending{};
    try {
        ending = RunSteps();
    } catch (...) {
        EndPersistentCommands(); // They use what the caller may destroy now.
        throw;
    }
    EndPersistentCommands();
    for (const auto& [name, value] : m_services.data.All())
        RecordEvent(event::DataLeft, {{argument::name, name}, {argument::value, value}});
    m_services.data.Clear();
    RecordEvent(event::ProcedureEnded,
                {{argument::verdict, NameOf(ending.verdict)}, {argument::reason, ending.reason}});
    return ending.verdict;
}

Runner::Ending Runner::RunSteps() {
    std::string current = m_procedure.start.text;
    while (!m_aborted) {
        const Step& step = m_procedure.steps.at(current);
        RecordEvent(event::StepEntered, {{argument::step, current}});
        if (step.end)
            return {*step.end, fmt::format("step '{}'", current)};

        m_services.persistentThreads.EnterStep();
        m_services.procedureController.EnterStep([this, &step](const std::string& id) {
            return step.on.contains(id) || m_procedure.steps.contains(id);
        });

        const std::optional<std::string> failedCommand = RunCommandsOf(step);
        if (!failedCommand)
            AwaitCommandsOf(step);
        const std::optional<std::string> chosen = m_services.procedureController.LeaveStep();
        if (m_aborted)
            break;
        std::string key;
        const std::string* const target = TargetOf(step, chosen, !failedCommand, key);
        if (!target && failedCommand)
            return {Verdict::Failed,
                    fmt::format("command '{}' failed in step '{}'", *failedCommand, current)};
        if (!target)
            return {Verdict::Failed, fmt::format("no transition was chosen in step '{}'", current)};
        RecordEvent(event::TransitionFollowed,
                    {{argument::from, current},
                     {argument::to, *target},
                     {argument::key, key},
                     {argument::transitionId, chosen ? Value(*chosen) : Value(nullptr)}});
        current = *target;
    }
    return {Verdict::Aborted, "interrupted"};
}

std::optional<std::string> Runner::RunCommandsOf(const Step& step) {
    for (const Located& id : step.run) {
        if (m_aborted || m_services.procedureController.Chosen())
            break;
        if (FAILED(RunCommand(id.text)))
            return id.text;
    }
    return std::nullopt;
}

void Runner::AwaitCommandsOf(const Step& step) {
    const auto isOver = [&] {
        if (m_aborted || step.wait == Wait::Not)
            return true;
        if (step.wait == Wait::End)
            return !m_services.persistentThreads.IsAnyOfStepRunning();
        return m_services.procedureController.Chosen().has_value() ||
               !m_services.persistentThreads.IsAnyRunning();
    };
    while (!isOver())
        m_services.changed.Wait(INFINITE);
}

void Runner::EndPersistentCommands() {
    m_ending = true;
    m_services.Close();
    m_services.persistentThreads.End();
}

void Runner::Abort() noexcept {
    m_aborted = true;
    m_ending = true;
    m_services.Close();
    m_services.changed.Set();
}

const std::string* Runner::TargetOf(const Step& step, const std::optional<std::string>& chosen,
                                    bool succeeded, std::string& key) const {
    if (chosen) {
        key = "on";
        const auto entry = step.on.find(*chosen);
        return entry != step.on.end() ? &entry->second.text : &m_procedure.steps.find(*chosen)->first;
    }
    key = succeeded ? "next" : "failed";
    const std::optional<Located>& target = succeeded ? step.next : step.failed;
    return target ? &target->text : nullptr;
}

HRESULT Runner::RunCommand(const std::string& id) {
    if (m_ending)
        return E_ABORT;
    const auto command = m_procedure.commands.find(id);
    if (command == m_procedure.commands.end())
        return E_INVALIDARG;
    if (CommandDepth() >= maxCommandDepth)
        return HRESULT_FROM_WIN32(ERROR_STACK_OVERFLOW);
    const std::string caller = CurrentCommand();
    CComPtr<IVantCommand> object;
    CommandScope scope(id);
    const char* phase = "";
    const HRESULT result = CreateAndExecute(command->second, object, scope, phase);
    RecordEvent(event::CommandEnded,
                {{argument::className, command->second.className.text},
                 {argument::caller, TextOrNull(caller)},
                 {argument::phase, phase}},
                result);
    return result;
}

HRESULT Runner::CreateAndExecute(const Command& command, CComPtr<IVantCommand>& object, CommandScope& scope,
                                 const char*& phase) {
    phase = "create";
    HRESULT result = m_factory.Create(command.className.text, object);
    RecordEvent(event::CommandCreated, {{argument::className, command.className.text}}, result);
    if (FAILED(result))
        return result;

    phase = "initialize";
    result = object->Initialize(&m_services.context, &m_services.controller);
    RecordEvent(event::CommandInitialized, {}, result);
    if (FAILED(result))
        return result;

    phase = "set property";
    for (const auto& [name, value] : command.properties) {
        result = object->SetProperty(CComBSTR(ToWide(name.text)).Get(), CComBSTR(ToWide(value.text)).Get());
        RecordEvent(event::PropertySet, {{argument::name, name.text}, {argument::value, value.text}}, result);
        if (FAILED(result))
            return result;
    }

    phase = "execute";
    scope.SetObject(object.Get());
    return object->Execute();
}

void Runner::RecordThreadEnded(std::uint32_t cookie, HRESULT result) noexcept {
    try {
        RecordEvent(event::ThreadEnded, {{argument::cookie, std::int64_t{cookie}}}, result);
    } catch (...) {
        m_journal.MarkIncomplete();
    }
}

void Runner::RecordEvent(const char* event, std::vector<Argument> arguments, std::optional<HRESULT> result) {
    Record record;
    record.service = service::Runner;
    record.operation = event;
    record.arguments = std::move(arguments);
    record.result = result;
    m_journal.Add(std::move(record));
}

} // namespace vant::host
