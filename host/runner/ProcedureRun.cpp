#include "host/runner/ProcedureRun.h"

#include "host/object/VariantValue.h"
#include "host/procedure/ClassTraits.h"
#include "host/record/Codes.h"
#include "host/record/Json.h"
#include "host/record/Vocabulary.h"
#include "host/text/Duration.h"
#include "host/text/Printable.h"

#include <algorithm>
#include <exception>
#include <fmt/format.h>
#include <memory>

namespace vant::host {

namespace {

/// Arguments whose text is empty are left out.
std::vector<Argument> WithoutEmpty(std::vector<Argument> arguments) {
    std::erase_if(arguments, [](const Argument& each) { return each.value == Value(std::string()); });
    return arguments;
}

} // namespace

ProcedureRun::ProcedureRun(const Procedure& procedure, RunShared& shared, ProcedureRun* outer)
    : m_procedure(procedure), m_shared(shared), m_outer(outer), m_measurements(procedure.measurements),
      m_execution(
          procedure, shared.factory, shared.journal, m_services,
          [this](const std::string& entry) { m_measurements.Expect(entry); },
          [this](const std::string& id, const std::string& entry) { NoteMissingResult(id, entry); }),
      m_services(
          shared.journal, [this](const std::string& id) { return RunCommand(id); },
          [this](std::uint32_t cookie, HRESULT result) { RecordThreadEnded(cookie, result); },
          procedure.engine, procedure.components, procedure.conditions,
          outer ? &outer->m_services : nullptr) {
    for (const auto& [name, conditions] : procedure.conditions) {
        for (const Condition& each : conditions.list) {
            if (!each.hasOwnMessage)
                m_messages.insert(each.message);
        }
    }
    m_services.gate.Watch([this](const Record& call) { Watch(call); });
}

void ProcedureRun::Give(const std::string& entry, CComVariant value) {
    m_arguments.emplace_back(entry, std::move(value));
}

Ending ProcedureRun::Run() {
    RecordBeginning();
    const std::int64_t maxTime =
        m_outer ? m_procedure.maxTime : m_shared.settings.maxTime.value_or(m_procedure.maxTime);
    Ending ending;
    std::exception_ptr thrown;
    try {
        const Watchdog::Guard limit(m_watchdog, maxTime, [this] { End(Cause::MaxTime); });
        ending = RunSteps();
    } catch (...) {
        thrown = std::current_exception();
        ending = {Verdict::Error, "the module or the host failed"};
    }
    EndPersistentCommands(); // They use what the caller may destroy afterwards.
    RunFinally();
    if (m_cause == Cause::Aborted && ending.verdict != Verdict::Aborted)
        ending = {Verdict::Aborted, "interrupted at the end; before that: " + ending.reason};
    for (const auto& [name, value] : m_services.data.All()) {
        if (!m_messages.contains(name))
            m_shared.journal.AddEvent(event::DataLeft, {{argument::name, name}, {argument::value, value}});
    }
    const auto measured = RecordMeasurements();
    if (!m_outer)
        RecordLeft();
    ending = Judge({.ending = std::move(ending),
                    .measured = measured,
                    .failedProcedures = m_failedProcedures,
                    .failedCalls = m_shared.settings.allowFailedCalls ? "" : m_failedCalls.Summary(),
                    .failedCleanUp = m_failedCleanUp.Summary()});
    m_shared.journal.AddEvent(event::ProcedureEnded, {{argument::verdict, NameOf(ending.verdict)},
                                                      {argument::reason, ending.reason}});
    if (thrown)
        std::rethrow_exception(thrown);
    return ending;
}

void ProcedureRun::RecordBeginning() {
    m_shared.journal.AddEvent(event::ProcedureStarted,
                              WithoutEmpty({{argument::name, m_procedure.name},
                                            {argument::description, m_procedure.description},
                                            {argument::revision, m_procedure.revision},
                                            {argument::author, m_procedure.author}}));
    if (!m_outer) {
        for (const auto& [name, value] : m_shared.settings.tags)
            m_shared.journal.AddEvent(event::TagGiven, {{argument::name, name}, {argument::value, value}});
        RecordParameters();
    }
    for (const auto& [name, value] : m_procedure.data)
        m_services.data.Set(ToWide(name), ToVariant(value));
    for (auto& [name, value] : m_arguments)
        m_services.data.Set(ToWide(name), std::move(value));
    m_arguments.clear();
    for (const auto& [name, value] : m_services.data.All()) {
        if (!m_procedure.conditions.contains(name) && !m_messages.contains(name))
            m_shared.journal.AddEvent(event::DataGiven, {{argument::name, name}, {argument::value, value}});
    }
    for (const auto& [name, conditions] : m_procedure.conditions)
        m_shared.journal.AddEvent(event::ConditionsGiven,
                                  {{argument::name, name}, {argument::conditions, Describe(conditions)}});
}

void ProcedureRun::RecordParameters() {
    if (!m_procedure.engine)
        return;
    for (const auto& [id, parameter] : m_procedure.engine->parameters) {
        const auto units = m_procedure.engine->units.find(parameter.unitsKey);
        m_shared.journal.AddEvent(
            event::ParameterGiven,
            WithoutEmpty({{argument::id, id},
                          {argument::name, parameter.name},
                          {argument::units,
                           units == m_procedure.engine->units.end() ? std::string() : units->second}}));
    }
}

Ending ProcedureRun::RunSteps() {
    const std::int64_t maxSteps =
        m_outer ? m_procedure.maxSteps : m_shared.settings.maxSteps.value_or(m_procedure.maxSteps);
    std::string current = m_procedure.start.text;
    for (std::int64_t entered = 0; m_cause == Cause::None; ++entered) {
        if (entered == maxSteps)
            return {Verdict::Error, fmt::format("the limit of {} steps was reached, before step {}", maxSteps,
                                                Quoted(current))};
        const Step& step = m_procedure.steps.at(current);
        {
            const std::lock_guard lock(m_access);
            m_step = &step;
            m_stepId = current;
        }
        m_shared.journal.AddEvent(
            event::StepEntered,
            WithoutEmpty({{argument::step, current}, {argument::description, step.description}}));
        if (step.end)
            return {*step.end, fmt::format("step '{}'", current)};
        const Attempt attempt = RunStep(step);
        if (m_cause != Cause::None)
            break;
        std::string key;
        const std::string* const target = TargetOf(step, attempt, key);
        if (!target)
            return EndingIn(current, attempt);
        m_shared.journal.AddEvent(
            event::TransitionFollowed,
            {{argument::from, current},
             {argument::to, *target},
             {argument::key, key},
             {argument::transitionId, attempt.chosen ? Value(*attempt.chosen) : Value(nullptr)}});
        current = *target;
    }
    return EndingBy(m_cause);
}

void ProcedureRun::End(Cause cause) noexcept {
    const std::lock_guard lock(m_access);
    if (m_cause == Cause::None || cause == Cause::Aborted)
        m_cause = cause;
    if (m_called)
        m_called->End(cause == Cause::MaxTime ? Cause::Outer : cause);
    if (m_inFinally)
        return; // It has a limit of its own.
    m_ending = true;
    m_services.Close();
    m_services.changed.Set();
}

std::optional<Ending> ProcedureRun::RunCalled(const ProcedureCall& call) {
    auto called = std::make_unique<ProcedureRun>(*call.procedure, m_shared, this);
    for (const auto& [entry, value] : call.given)
        called->Give(entry, ToVariant(value));
    for (const auto& [entry, own] : call.passed) {
        CComVariant value;
        if (FAILED(m_services.data.Read(ToWide(own.text), value)))
            return Ending{Verdict::Error,
                          fmt::format("there is no data entry {} to pass on", Quoted(own.text))};
        called->Give(entry, std::move(value));
    }
    for (const auto& [own, entry] : call.results)
        m_measurements.Expect(own);
    Ending ending = RunAsCalled(*called);
    ending.reason = fmt::format("procedure {} ended {}: {}", Quoted(call.procedure->name),
                                NameOf(ending.verdict), ending.reason);
    for (const auto& [own, entry] : call.results) {
        CComVariant value;
        if (SUCCEEDED(called->m_services.data.Read(ToWide(entry.text), value))) {
            if (called->m_execution.HasWritten(entry.text))
                NoteWrite(own, ToValue(value.Get()));
            m_services.data.Set(ToWide(own), std::move(value));
        } else if (ending.verdict == Verdict::Passed) {
            ending = {Verdict::Error, fmt::format("procedure {} has left no data entry {}",
                                                  Quoted(call.procedure->name), Quoted(entry.text))};
        }
    }
    called->ReleaseData();
    const bool isStopped = ending.verdict == Verdict::Aborted && m_cause == Cause::None;
    NoteFailureOfCalled(call, *called, ending, isStopped);
    if (!called->StillHeld().empty())
        m_stillHeld.push_back(std::move(called));
    if (isStopped)
        return std::nullopt; // The choice says where to go on.
    return ending.verdict == Verdict::Passed ? std::nullopt : std::optional(std::move(ending));
}

Ending ProcedureRun::RunAsCalled(ProcedureRun& called) {
    struct Scope {
        Scope(ProcedureRun& outer, ProcedureRun& inner) : run(outer) {
            const std::lock_guard lock(run.m_access);
            run.m_called = &inner;
            // What came before has not reached the called one.
            if (run.m_cause != Cause::None)
                inner.End(run.m_cause == Cause::Aborted ? Cause::Aborted : Cause::Outer);
            else if (run.m_stepExpired)
                inner.End(Cause::Outer);
        }
        ~Scope() {
            const std::lock_guard lock(run.m_access);
            run.m_called = nullptr;
        }
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;

        ProcedureRun& run;
    };
    const Scope scope(*this, called);
    if (m_services.procedureController.IsFinal())
        called.End(Cause::Stopped);
    return called.Run();
}

void ProcedureRun::NoteFailureOfCalled(const ProcedureCall& call, const ProcedureRun& called,
                                       const Ending& ending, bool isStopped) {
    if (MayFail(call.file.text, ""))
        return;
    if (isStopped || m_stepExpired) {
        // Its ending is that of this step; what it could not do remains.
        for (const FailedCalls* const failed : {&called.m_failedCalls, &called.m_failedCleanUp}) {
            if (const std::string summary = failed->Summary(); !summary.empty())
                m_failedCalls.Add(fmt::format("procedure {}: {}", Quoted(call.procedure->name), summary));
        }
    } else if (ending.verdict == Verdict::Error) {
        m_failedCalls.Add(ending.reason);
    } else if (ending.verdict == Verdict::Failed) {
        m_failedProcedures.push_back(ending.reason);
    }
}

const std::string* ProcedureRun::StepOf(const Step& step, const std::string& transition) const {
    for (const auto* const targets : {&step.on, &m_procedure.on}) {
        if (const auto entry = targets->find(transition); entry != targets->end())
            return &entry->second.text;
    }
    const auto named = m_procedure.steps.find(transition);
    return named == m_procedure.steps.end() ? nullptr : &named->first;
}

Acceptance ProcedureRun::AcceptanceOf(const Step& step, const std::string& transition) {
    const bool isMonitor = IsMonitor(CurrentCommand());
    if (step.always) // A monitor tries again in the next step.
        return isMonitor ? Acceptance::Refused : Acceptance::Ignored;
    if (!StepOf(step, transition)) {
        if (isMonitor && !MayFail(CurrentCommand(), operation::SetTransition))
            m_failedCalls.Add(fmt::format("the monitor {} chose {}, which leads nowhere from step {}",
                                          Quoted(CurrentCommand()), Quoted(transition), Quoted(m_stepId)));
        return Acceptance::Refused;
    }
    if (!isMonitor)
        return Acceptance::Accepted;
    EndCalled(Cause::Stopped);
    return Acceptance::Final;
}

bool ProcedureRun::IsMonitor(const std::string& commandId) const {
    const auto command = m_procedure.commands.find(commandId);
    return command != m_procedure.commands.end() && TraitsOf(command->second.className.text).guards;
}

const std::string* ProcedureRun::TargetOf(const Step& step, const Attempt& attempt, std::string& key) const {
    const auto follow = [&key](const char* name, const std::optional<Located>& target) {
        key = name;
        return target ? &target->text : nullptr;
    };
    if (step.always)
        return follow("always", step.always);
    if (attempt.timedOut)
        return step.timedOut ? follow("timedOut", step.timedOut) : follow("failed", step.failed);
    if (attempt.chosen) {
        key = "on";
        return StepOf(step, *attempt.chosen);
    }
    return attempt.failure ? follow("failed", step.failed) : follow("next", step.next);
}

Ending ProcedureRun::EndingIn(const std::string& step, const Attempt& attempt) const {
    const auto with = [](std::string reason, const std::string& details) {
        return details.empty() ? reason : reason + ": " + details;
    };
    if (attempt.timedOut)
        return {Verdict::Failed,
                with(fmt::format("the time of step {} ran out", Quoted(step)), attempt.timedOutReason)};
    if (!attempt.failure)
        return {Verdict::Error, fmt::format("no transition was chosen in step '{}'", step)};
    const std::string reason = fmt::format("{} in step '{}'", attempt.failure->reason, step);
    return {attempt.failure->verdict,
            attempt.failure->verdict == Verdict::Error ? with(reason, m_failedCalls.Summary()) : reason};
}

Ending ProcedureRun::EndingBy(Cause cause) const {
    if (cause == Cause::Aborted)
        return {Verdict::Aborted, "interrupted"};
    if (cause == Cause::Unanswered)
        return {Verdict::Error, m_shared.unanswered};
    if (cause == Cause::Stopped)
        return {Verdict::Aborted, "a monitor of the calling procedure chose a transition"};
    const std::string waiting = DescribeWaiting();
    return {Verdict::Error,
            fmt::format("the time limit {} was reached in step {}{}{}",
                        cause == Cause::Outer ? "of the calling procedure" : "of the procedure",
                        Quoted(m_stepId), waiting.empty() ? "" : ": ", waiting)};
}

void ProcedureRun::EndPersistentCommands() {
    {
        const std::lock_guard lock(m_access);
        m_ending = true;
        m_services.Close();
    }
    m_services.persistentThreads.End();
}

void ProcedureRun::RunFinally() {
    if (m_procedure.finally.empty())
        return;
    {
        const std::lock_guard lock(m_access);
        m_inFinally = true;
        m_step = nullptr;
        m_stepExpired = false;
        m_ending = false;
        m_services.Open();
    }
    m_shared.journal.AddEvent(event::FinallyStarted, {});
    m_services.persistentThreads.EnterStep();
    m_services.procedureController.EnterStep([](const std::string&) { return Acceptance::Ignored; });
    {
        const Watchdog::Guard limit(m_watchdog, m_procedure.finallyTime, [this] {
            m_stepExpired = true;
            m_ending = true;
            m_services.Close();
            m_services.changed.Set();
        });
        for (const Located& id : m_procedure.finally) {
            try {
                if (const HRESULT result = RunCommand(id.text); FAILED(result))
                    m_failedCleanUp.Add(fmt::format("{} failed: {}", Quoted(id.text), DescribeCode(result)));
            } catch (const std::exception& failure) {
                m_failedCleanUp.Add(fmt::format("{} could not be run: {}", Quoted(id.text), failure.what()));
            }
        }
        while (!m_stepExpired && m_services.persistentThreads.IsAnyRunning())
            m_services.changed.Wait(INFINITE);
    }
    if (m_stepExpired)
        m_failedCleanUp.Add("its time of " + FormatDuration(m_procedure.finallyTime) + " ran out");
    bool isFinal = false;
    m_services.procedureController.LeaveStep(isFinal);
    EndPersistentCommands();
}

std::vector<Measurements::Result> ProcedureRun::RecordMeasurements() {
    auto results = m_measurements.Results();
    for (const Measurements::Result& each : results) {
        const bool made = each.value.has_value();
        m_shared.journal.AddEvent(event::Measured,
                                  {{argument::name, each.name},
                                   {argument::data, each.measurement->data.text},
                                   {argument::value, each.value.value_or(nullptr)},
                                   {argument::units, each.measurement->units},
                                   {argument::limits, Describe(each.measurement->limits)},
                                   {argument::verdict, NameOf(each.outcome)},
                                   {argument::at, made ? Value(each.time) : Value(nullptr)},
                                   {argument::step, made ? Value(each.step) : Value(nullptr)},
                                   {argument::description, each.measurement->description}});
    }
    return results;
}

void ProcedureRun::RecordLeft() {
    if (!m_services.engine)
        return;
    for (const Engine::Left& each : m_services.engine->Model().LeftWritten())
        m_shared.journal.AddEvent(event::ParameterLeft,
                                  {{argument::id, each.id},
                                   {argument::name, m_procedure.engine->parameters.at(each.id).name},
                                   {argument::value, each.value},
                                   {argument::was, each.was}});
}

HRESULT ProcedureRun::RunCommand(const std::string& id) {
    if (m_ending || (m_stepExpired && CurrentThread() == mainThread))
        return E_ABORT;
    const MessageScope messages(m_showMessage);
    return m_execution.Run(id);
}

void ProcedureRun::NoteMissingResult(const std::string& commandId, const std::string& entry) {
    if (!m_ending && !MayFail(commandId, ""))
        (m_inFinally ? m_failedCleanUp : m_failedCalls)
            .Add(fmt::format("{} has not written {}", Quoted(commandId), Quoted(entry)));
}

void ProcedureRun::Watch(const Record& call) {
    const HRESULT result = call.result.value_or(S_OK);
    if (result == E_ABORT)
        return; // It was refused because the step or the run ends.
    if (SUCCEEDED(result) && call.operation == operation::TerminateCommand)
        m_execution.NoteStop(call.Text(argument::commandId));
    if (SUCCEEDED(result) && call.operation == operation::SetValue) {
        const Value* const value = call.Find(argument::value);
        NoteWrite(call.Text(argument::name), value ? *value : Value(nullptr));
    }
    // The step's own evaluations are repeated until they succeed.
    const bool isRefusedStop = call.operation == operation::SetTransition && IsMonitor(call.command);
    const bool counts =
        !m_ending && !call.command.empty() && !isRefusedStop && !MayFail(call.command, call.operation);
    (m_inFinally ? m_failedCleanUp : m_failedCalls)
        .Take(call, m_shared.journal.Now(), counts, m_services.persistentThreads.IsThisThreadOfStep());
}

bool ProcedureRun::MayFail(const std::string& command, const std::string& operation) const {
    const std::lock_guard lock(m_access);
    return m_step && std::any_of(m_step->mayFail.begin(), m_step->mayFail.end(), [&](const Located& each) {
               return each.text == command || each.text == operation;
           });
}

void ProcedureRun::NoteWrite(const std::string& entry, Value value) {
    const std::int64_t now = m_shared.journal.Now();
    m_execution.NoteWrite(entry);
    const std::lock_guard lock(m_access);
    m_measurements.Take(entry, std::move(value), now, m_inFinally ? "finally" : m_stepId);
}

std::vector<std::string> ProcedureRun::StillHeld() const {
    std::vector<std::string> held = m_services.StillHeld();
    for (const auto& called : m_stillHeld) {
        for (std::string& name : called->StillHeld())
            held.push_back(std::move(name));
    }
    return held;
}

void ProcedureRun::RecordThreadEnded(std::uint32_t cookie, HRESULT result) noexcept {
    try {
        if (!m_ending && !m_stoppingStep)
            m_execution.CheckResultsOfEnded(CurrentCommand());
        m_shared.journal.AddEvent(event::ThreadEnded, {{argument::cookie, std::int64_t{cookie}}}, result);
    } catch (...) {
        m_shared.journal.MarkIncomplete();
    }
}

} // namespace vant::host
