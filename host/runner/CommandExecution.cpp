#include "host/runner/CommandExecution.h"

#include "framework/interfaces/ClassProperties.h"
#include "host/procedure/ClassTraits.h"
#include "host/record/Vocabulary.h"
#include "platform/Bstr.h"
#include "platform/ComPtr.h"
#include "platform/Utf8.h"

namespace vant::host {

namespace {

Value TextOrNull(const std::string& text) {
    return text.empty() ? Value(nullptr) : Value(text);
}

/// Whether a command that succeeds writes the entry, or, if it runs on, may write it.
bool IsRequiredResult(const ClassProperty& property) {
    return property.required && property.kind == PropertyKind::DataEntryWritten;
}

} // namespace

HRESULT CommandExecution::Run(const std::string& id) {
    const auto command = m_procedure.commands.find(id);
    if (command == m_procedure.commands.end())
        return E_INVALIDARG;
    if (CommandDepth() >= maxCommandDepth)
        return HRESULT_FROM_WIN32(ERROR_STACK_OVERFLOW);
    const std::string caller = CurrentCommand();
    const bool runsOn = TraitsOf(command->second.className.text).runsOn;
    const std::uint64_t before = NoteBegin(id, runsOn);
    CComPtr<IVantCommand> object;
    CommandScope scope(id);
    const char* phase = "";
    const HRESULT result = CreateAndExecute(command->second, object, scope, phase);
    if (SUCCEEDED(result) && !runsOn)
        CheckResults(command->second, id, before);
    m_journal.AddEvent(event::CommandEnded,
                       {{argument::className, command->second.className.text},
                        {argument::caller, TextOrNull(caller)},
                        {argument::phase, phase}},
                       result);
    return result;
}

HRESULT CommandExecution::CreateAndExecute(const Command& command, CComPtr<IVantCommand>& object,
                                           CommandScope& scope, const char*& phase) {
    phase = "create";
    HRESULT result = m_factory.Create(command.className.text, object);
    m_journal.AddEvent(event::CommandCreated, {{argument::className, command.className.text}}, result);
    if (FAILED(result))
        return result;

    phase = "initialize";
    result = object->Initialize(&m_services.context, &m_services.controller);
    m_journal.AddEvent(event::CommandInitialized, {}, result);
    if (FAILED(result))
        return result;

    phase = "set property";
    for (const auto& [name, value] : command.properties) {
        result = object->SetProperty(CComBSTR(ToWide(name.text)).Get(), CComBSTR(ToWide(value.text)).Get());
        m_journal.AddEvent(event::PropertySet, {{argument::name, name.text}, {argument::value, value.text}},
                           result);
        if (FAILED(result))
            return result;
    }

    for (const auto& [name, value] : command.properties) {
        const ClassProperty* const property = FindClassProperty(command.className.text, name.text);
        if (property && IsRequiredResult(*property))
            m_expected(value.text);
    }
    phase = "execute";
    scope.SetObject(object.Get());
    return object->Execute();
}

void CommandExecution::NoteStop(const std::string& id) {
    const std::lock_guard lock(m_access);
    m_begun.erase(id);
}

void CommandExecution::CheckResultsOfEnded(const std::string& id) {
    const auto command = m_procedure.commands.find(id);
    if (command == m_procedure.commands.end() || TraitsOf(command->second.className.text).guards)
        return; // A monitor writes only if a condition does not hold.
    std::uint64_t before = 0;
    {
        const std::lock_guard lock(m_access);
        const auto begun = m_begun.find(id);
        if (begun == m_begun.end())
            return;
        before = begun->second;
        m_begun.erase(begun);
    }
    CheckResults(command->second, id, before);
}

void CommandExecution::CheckResults(const Command& command, const std::string& id, std::uint64_t before) {
    for (const auto& [name, value] : command.properties) {
        const ClassProperty* const property = FindClassProperty(command.className.text, name.text);
        if (!property || !IsRequiredResult(*property) || LastWrite(value.text) > before)
            continue;
        m_journal.AddEvent(event::ResultMissing,
                           {{argument::name, name.text}, {argument::value, value.text}});
        m_missing(id, value.text);
    }
}

void CommandExecution::NoteWrite(const std::string& entry) {
    const std::lock_guard lock(m_access);
    m_lastWrite[entry] = ++m_writes;
}

std::uint64_t CommandExecution::NoteBegin(const std::string& id, bool runsOn) {
    const std::lock_guard lock(m_access);
    if (runsOn)
        m_begun.insert_or_assign(id, m_writes);
    return m_writes;
}

std::uint64_t CommandExecution::LastWrite(const std::string& entry) const {
    const std::lock_guard lock(m_access);
    const auto found = m_lastWrite.find(entry);
    return found == m_lastWrite.end() ? 0 : found->second;
}

} // namespace vant::host
