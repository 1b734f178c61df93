#include "host/runner/ProcedureRun.h"

#include "host/object/VariantValue.h"
#include "host/procedure/ClassTraits.h"
#include "host/record/Codes.h"
#include "host/record/Json.h"
#include "host/record/ReportText.h"
#include "host/record/Vocabulary.h"
#include "host/runner/QuestionText.h"
#include "host/text/Duration.h"
#include "host/text/Printable.h"
#include "platform/Clock.h"

#include <algorithm>
#include <exception>
#include <fmt/format.h>
#include <memory>

namespace vant::host {

namespace {

/// How often commands that are to end before the next try are stopped.
constexpr DWORD stoppingPeriod = 100;

/// How often a step looks whether the conditions that it waits for hold.
constexpr DWORD conditionsPeriod = 250;

/// Arguments whose text is empty are left out.
std::vector<Argument> WithoutEmpty(std::vector<Argument> arguments) {
    std::erase_if(arguments, [](const Argument& each) { return each.value == Value(std::string()); });
    return arguments;
}

std::string Measured(const Measurements::Result& result) {
    const std::string units = result.measurement->units.empty() ? "" : " " + result.measurement->units;
    return fmt::format("measurement {} is {}{}, required {}", Quoted(result.name),
                       ToJson(*result.value).dump(), units, Describe(result.measurement->limits));
}

/// It is closed by its only button.
void MakeMessage(Prompt& prompt) {
    prompt.kind = Prompt::Kind::Message;
    prompt.buttons = {"OK"};
    prompt.standard = "OK";
}

} // namespace

const char* NameOf(Verdict verdict) {
    switch (verdict) {
    case Verdict::Passed:
        return "passed";
    case Verdict::Failed:
        return "failed";
    case Verdict::Error:
        return "error";
    default:
        return "aborted";
    }
}

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

ProcedureRun::Ending ProcedureRun::Run() {
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
    ending = Judge(std::move(ending), measured);
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

ProcedureRun::Ending ProcedureRun::RunSteps() {
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

ProcedureRun::Attempt ProcedureRun::RunStep(const Step& step) {
    for (std::int64_t number = 1;; ++number) {
        m_failedCalls.BeginTry();
        m_measurements.BeginTry();
        const std::size_t failedBefore = m_failedProcedures.size();
        Attempt attempt = TryStep(step);
        if (m_cause != Cause::None || number > step.retry.times || !WantsRetry(step, attempt) ||
            !WaitForNextTry(step, attempt, number + 1)) {
            m_failedCalls.KeepTry();
            return attempt;
        }
        m_failedCalls.DropTry();
        m_measurements.DropTry();
        m_failedProcedures.resize(failedBefore);
    }
}

bool ProcedureRun::WaitForNextTry(const Step& step, Attempt& attempt, std::int64_t number) {
    m_shared.journal.AddEvent(event::StepRetried, {{argument::step, m_stepId},
                                                   {argument::attempt, number},
                                                   {argument::reason, ReasonOfRetry(attempt)}});
    m_stepExpired = false;
    m_services.procedureController.EnterStep([this, &step](const std::string& id) {
        const Acceptance acceptance = AcceptanceOf(step, id);
        return acceptance == Acceptance::Accepted ? Acceptance::Ignored : acceptance;
    });
    const auto haveEnded = [this] {
        m_services.persistentThreads.StopOfStep(); // Again each time: one that ends may still start another.
        return !m_services.persistentThreads.IsAnyOfStepRunning();
    };
    m_stoppingStep = true;
    WaitUntil(haveEnded, stoppingPeriod);
    m_stoppingStep = false;
    if (step.retry.after > 0 && m_cause == Cause::None) {
        BeginWait(step, "the next try");
        Pause(step.retry.after);
    }
    bool isFinal = false;
    const auto chosen = m_services.procedureController.LeaveStep(isFinal);
    if (chosen)
        attempt = Attempt{.chosen = chosen, .isFinal = isFinal};
    return !chosen && m_cause == Cause::None;
}

std::string ProcedureRun::ReasonOfRetry(const Attempt& attempt) {
    if (attempt.failure)
        return attempt.failure->reason;
    if (attempt.timedOut)
        return "its time ran out";
    return attempt.chosen ? "transition " + Quoted(*attempt.chosen) : "a host call failed";
}

bool ProcedureRun::WantsRetry(const Step& step, const Attempt& attempt) const {
    if (attempt.isFinal)
        return false;
    if (attempt.failure || attempt.timedOut || m_failedCalls.CountOfTry() != 0)
        return true;
    const auto isChosen = [&attempt](const Located& transition) { return transition.text == attempt.chosen; };
    return attempt.chosen && std::any_of(step.retry.on.begin(), step.retry.on.end(), isChosen);
}

ProcedureRun::Attempt ProcedureRun::TryStep(const Step& step) {
    m_services.persistentThreads.EnterStep();
    m_services.procedureController.EnterStep(
        [this, &step](const std::string& id) { return AcceptanceOf(step, id); });
    m_lastEvaluation = S_OK;
    EndWait();
    m_stepExpired = false;
    Attempt attempt;
    {
        std::optional<Watchdog::Guard> limit;
        if (step.timeout)
            limit.emplace(m_watchdog, *step.timeout, [this] { ExpireStep(); });
        m_executing = true;
        if (step.procedure)
            attempt.failure = RunCalled(*step.procedure);
        if (!attempt.failure) {
            if (const auto failed = RunCommandsOf(step))
                attempt.failure = Ending{Verdict::Error, fmt::format("command '{}' failed", *failed)};
        }
        m_executing = false;
        const bool isOver = attempt.failure ? !m_stepExpired : !m_stepExpired && WaitInStep(step);
        attempt.timedOut = !isOver && m_stepExpired;
    }
    m_services.parameterService.AllowMainThread();
    attempt.chosen = m_services.procedureController.LeaveStep(attempt.isFinal);
    if (attempt.isFinal) {
        attempt.timedOut = false;
        attempt.failure.reset();
    }
    if (attempt.timedOut && m_cause == Cause::None) {
        attempt.failure.reset();
        attempt.timedOutReason = DescribeWaiting();
        NoteUnreadable(step);
        m_shared.journal.AddEvent(event::StepTimedOut,
                                  {{argument::step, m_stepId}, {argument::reason, attempt.timedOutReason}});
    }
    return attempt;
}

bool ProcedureRun::WaitInStep(const Step& step) {
    const auto isChosen = [this] { return m_services.procedureController.Chosen().has_value(); };
    if (step.ask && !isChosen() && !Ask(step))
        return false;
    if (step.delay && !isChosen()) {
        BeginWait(step, "a delay of " + FormatDuration(*step.delay));
        if (!Pause(*step.delay))
            return false;
    }
    if (step.until && !isChosen()) {
        BeginWait(step, "conditions " + Quoted(step.until->text));
        if (!AwaitConditions(step.until->text))
            return false;
    }
    if (step.wait == Wait::Not)
        return true;
    BeginWait(step, step.wait == Wait::End ? "the end of its commands" : "a transition");
    return AwaitCommands(step.wait);
}

template <class IsOver>
bool ProcedureRun::WaitUntil(IsOver isOver, DWORD period) {
    for (;;) {
        if (m_cause != Cause::None)
            return false;
        if (isOver())
            return true;
        if (m_stepExpired)
            return false;
        m_services.changed.Wait(period);
    }
}

bool ProcedureRun::Ask(const Step& step) {
    const Question& question = *step.ask;
    Prompt prompt{.kind = question.data ? question.isNumber ? Prompt::Kind::Number : Prompt::Kind::Text
                                        : Prompt::Kind::Buttons,
                  .step = m_stepId,
                  .text = ExpandQuestion(question.text.text, m_services),
                  .units = question.units,
                  .limits = question.limits,
                  .standard = question.standard};
    for (const Located& each : question.buttons)
        prompt.buttons.push_back(each.text);
    const std::string entry = question.data ? question.data->text : "";
    if (prompt.kind == Prompt::Kind::Buttons && prompt.buttons.empty())
        MakeMessage(prompt);
    if (question.data)
        m_measurements.Expect(entry);
    NoteWait("an answer");
    const auto isOver = [this] {
        return m_cause != Cause::None || m_stepExpired || m_services.procedureController.Chosen();
    };
    const Prompts::Outcome outcome = m_shared.prompts.Show(prompt, question.timeout, entry, isOver);
    if (outcome.isOver)
        return m_cause == Cause::None && !m_stepExpired;
    if (!outcome.answer) {
        EndUnanswered(prompt, outcome.mistake);
        return false;
    }
    if (question.data) {
        // Commands exchange texts, numbers too.
        const auto* const text = std::get_if<std::string>(&*outcome.answer);
        const Value entered = text ? *text : Readable(*outcome.answer);
        m_services.data.Set(ToWide(entry), ToVariant(entered));
        NoteWrite(entry, entered);
    } else if (!question.buttons.empty()) {
        m_services.procedureController.Choose(std::get<std::string>(*outcome.answer));
    }
    return true;
}

void ProcedureRun::ShowMessage(const std::string& caption, const std::string& text) {
    Prompt prompt{.caption = caption, .text = text};
    MakeMessage(prompt);
    const bool isMain = CurrentThread() == mainThread;
    m_shared.prompts.Show(prompt, std::nullopt, "",
                          [this, isMain] { return m_ending || (isMain && m_stepExpired); });
}

void ProcedureRun::EndUnanswered(const Prompt& prompt, const std::string& mistake) {
    m_shared.unanswered =
        fmt::format("the question {} of step {} {}", Quoted(prompt.text), Quoted(prompt.step),
                    mistake.empty() ? "has no answer: it needs an operator, a file of answers, or 'default'"
                                    : "does not take the answer: " + mistake);
    ProcedureRun* outermost = this;
    while (outermost->m_outer)
        outermost = outermost->m_outer;
    outermost->End(Cause::Unanswered);
}

bool ProcedureRun::Pause(std::int64_t milliseconds) {
    const std::int64_t end = ClockMilliseconds() + milliseconds;
    for (;;) {
        const std::int64_t rest = end - ClockMilliseconds();
        if (m_cause != Cause::None || m_stepExpired)
            return false;
        if (rest <= 0 || m_services.procedureController.Chosen())
            return true;
        m_services.changed.Wait(static_cast<DWORD>(std::min<std::int64_t>(rest, longestWait)));
    }
}

bool ProcedureRun::AwaitConditions(const std::string& name) {
    const auto set = std::find_if(m_services.conditionSets.begin(), m_services.conditionSets.end(),
                                  [&name](const ConditionSet& each) { return each.Entry() == name; });
    return WaitUntil(
        [&]() -> bool {
            VARIANT_BOOL hold = VARIANT_FALSE;
            if (m_services.procedureController.Chosen())
                return true;
            m_lastEvaluation = set->Evaluate(&hold);
            return SUCCEEDED(m_lastEvaluation) && hold != VARIANT_FALSE;
        },
        conditionsPeriod);
}

bool ProcedureRun::AwaitCommands(Wait wait) {
    return WaitUntil(
        [&] {
            if (wait == Wait::End && !m_services.procedureController.IsFinal())
                return !m_services.persistentThreads.IsAnyOfStepRunning();
            return m_services.procedureController.Chosen().has_value() ||
                   !m_services.persistentThreads.IsAnyRunning();
        },
        INFINITE);
}

void ProcedureRun::BeginWait(const Step& step, std::string what) {
    m_shared.journal.AddEvent(event::WaitStarted,
                              {{argument::waitsFor, what},
                               {argument::limit, step.timeout ? Value(*step.timeout) : Value(nullptr)}});
    NoteWait(std::move(what));
}

void ProcedureRun::NoteWait(std::string what) {
    const std::lock_guard lock(m_access);
    m_waitsFor = std::move(what);
    m_waitsSince = m_shared.journal.Now();
}

void ProcedureRun::EndWait() {
    const std::lock_guard lock(m_access);
    m_waitsFor.clear();
}

std::string ProcedureRun::DescribeWaiting() const {
    std::vector<std::string> texts;
    {
        const std::lock_guard lock(m_access);
        if (!m_waitsFor.empty())
            texts.push_back(
                fmt::format("it has waited for {} since {}", m_waitsFor, FormatTime(m_waitsSince)));
    }
    std::vector<std::string> running = m_services.persistentThreads.RunningCommands();
    for (std::string& id : running)
        id = Quoted(id);
    if (!running.empty())
        texts.push_back(fmt::format("still running: {}", fmt::join(running, ", ")));
    if (std::string failing = m_failedCalls.StillFailing(); !failing.empty())
        texts.push_back(std::move(failing));
    return fmt::format("{}", fmt::join(texts, "; "));
}

void ProcedureRun::NoteUnreadable(const Step& step) {
    const HRESULT code = step.until ? m_lastEvaluation : S_OK;
    if (FAILED(code) && !MayFail("", operation::Evaluate))
        m_failedCalls.Add(fmt::format("step {} could not evaluate {}: {}", Quoted(m_stepId),
                                      Quoted(step.until->text), DescribeCode(code)));
}

void ProcedureRun::ExpireStep() noexcept {
    m_stepExpired = true;
    if (m_executing)
        m_services.parameterService.RefuseMainThread();
    EndCalled(Cause::Outer);
    m_services.changed.Set();
}

void ProcedureRun::EndCalled(Cause cause) noexcept {
    const std::lock_guard lock(m_access);
    if (m_called)
        m_called->End(cause);
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

std::optional<std::string> ProcedureRun::RunCommandsOf(const Step& step) {
    for (const Located& id : step.run) {
        if (m_cause != Cause::None || m_stepExpired || m_services.procedureController.Chosen())
            break;
        const std::size_t before = m_failedCalls.Count();
        const HRESULT result = RunCommand(id.text);
        if (SUCCEEDED(result))
            continue;
        // A call that failed says more than the command's own result.
        if (m_failedCalls.Count() == before && result != E_ABORT && !MayFail(id.text, ""))
            m_failedCalls.Add(fmt::format("{} failed: {}", Quoted(id.text), DescribeCode(result)));
        return id.text;
    }
    return std::nullopt;
}

std::optional<ProcedureRun::Ending> ProcedureRun::RunCalled(const ProcedureCall& call) {
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

ProcedureRun::Ending ProcedureRun::RunAsCalled(ProcedureRun& called) {
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

ProcedureRun::Ending ProcedureRun::EndingIn(const std::string& step, const Attempt& attempt) const {
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

ProcedureRun::Ending ProcedureRun::EndingBy(Cause cause) const {
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

ProcedureRun::Ending ProcedureRun::Judge(Ending ending,
                                         const std::vector<Measurements::Result>& measured) const {
    const auto become = [&ending](Verdict verdict, std::string reason) {
        ending = {verdict, std::move(reason)};
    };
    const auto ofOutcome = [&measured](Outcome outcome, auto describe) {
        std::vector<std::string> texts;
        for (const Measurements::Result& each : measured) {
            if (each.outcome == outcome)
                texts.push_back(describe(each));
        }
        return fmt::format("{}", fmt::join(texts, "; "));
    };
    const std::string cleanUp = m_failedCleanUp.Summary();
    const std::string calls = m_shared.settings.allowFailedCalls ? "" : m_failedCalls.Summary();
    const bool passes = ending.verdict == Verdict::Passed;
    if (passes || ending.verdict == Verdict::Failed) {
        const std::string failed = ofOutcome(Outcome::Failed, Measured);
        const std::string missing = ofOutcome(Outcome::Missing, [](const Measurements::Result& each) {
            return fmt::format("measurement {} was not made", Quoted(each.name));
        });
        if (!calls.empty())
            become(Verdict::Error, fmt::format("not everything was done: {}; otherwise {}: {}", calls,
                                               NameOf(ending.verdict), ending.reason));
        else if (passes && (!failed.empty() || !m_failedProcedures.empty()))
            become(Verdict::Failed, failed.empty() ? m_failedProcedures.front() : failed);
        else if (passes && !missing.empty())
            become(Verdict::Error, missing);
        else if (passes && !cleanUp.empty())
            become(Verdict::Error, ending.reason);
        else if (!passes && !failed.empty())
            ending.reason += "; " + failed;
    }
    if (!cleanUp.empty())
        ending.reason += "; the clean-up failed: " + cleanUp;
    return ending;
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
