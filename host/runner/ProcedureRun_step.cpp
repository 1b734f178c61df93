// How a step is run: its tries, its commands, its question and its waits.

#include "host/object/VariantValue.h"
#include "host/record/Codes.h"
#include "host/record/ReportText.h"
#include "host/record/Vocabulary.h"
#include "host/runner/ProcedureRun.h"
#include "host/runner/QuestionText.h"
#include "host/text/Duration.h"
#include "host/text/Printable.h"
#include "platform/Clock.h"

#include <algorithm>
#include <fmt/format.h>
#include <utility>

namespace vant::host {

namespace {

/// How often commands that are to end before the next try are stopped.
constexpr DWORD stoppingPeriod = 100;

/// How often a step looks whether the conditions that it waits for hold.
constexpr DWORD conditionsPeriod = 250;

/// It is closed by its only button.
void MakeMessage(Prompt& prompt) {
    prompt.kind = Prompt::Kind::Message;
    prompt.buttons = {"OK"};
    prompt.standard = "OK";
}

} // namespace

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

} // namespace vant::host
