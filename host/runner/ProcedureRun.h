#pragma once

#include "host/procedure/Procedure.h"
#include "host/record/Journal.h"
#include "host/runner/CommandExecution.h"
#include "host/runner/CommandFactory.h"
#include "host/runner/FailedCalls.h"
#include "host/runner/Judgement.h"
#include "host/runner/Measurements.h"
#include "host/runner/MessageBoxes.h"
#include "host/runner/Operator.h"
#include "host/runner/Prompts.h"
#include "host/runner/Watchdog.h"
#include "host/services/Services.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace vant::host {

/// What the user asks of a run.
struct RunSettings {
    std::optional<std::int64_t> maxTime{};  ///< In place of the procedure's, in milliseconds.
    std::optional<std::int64_t> maxSteps{}; ///< In place of the procedure's.
    bool allowFailedCalls = false;          ///< Failed calls leave the verdict as it is.
    std::map<std::string, std::string> tags{};
    Operator* answering = nullptr; ///< Null: prompts have no other answer than their standard one.
};

/// What a procedure and those that it runs have in common.
struct RunShared {
    RunShared(const CommandFactory& usedFactory, Journal& usedJournal, RunSettings usedSettings)
        : factory(usedFactory), journal(usedJournal), settings(std::move(usedSettings)),
          prompts(journal, settings.answering) {}

    const CommandFactory& factory;
    Journal& journal;
    const RunSettings settings;
    Prompts prompts;
    std::string unanswered{}; ///< The question without an answer that ends the run.
};

/// Why a procedure ends before its steps lead to an end.
enum class Cause {
    None,
    Aborted,    ///< By the user.
    MaxTime,    ///< Its time has run out.
    Unanswered, ///< A question has no answer, so nothing of the run goes on.
    Stopped,    ///< A monitor of the procedure that runs it has chosen a transition.
    Outer       ///< The time of the procedure that runs it, or of its step, has run out.
};

/// One run of one procedure: its steps, then the commands under `finally`, then the verdict.
class ProcedureRun {
public:
    /// `outer`: the run that this one is part of; null for the outermost one. All arguments must outlive this
    /// object.
    ProcedureRun(const Procedure& procedure, RunShared& shared, ProcedureRun* outer);

    /// Before the run.
    void Intercept(CallGate::Interceptor interceptor) { m_services.gate.Intercept(std::move(interceptor)); }

    /// An entry of the data store at the beginning. Before the run.
    void Give(const std::string& entry, CComVariant value);

    /// Call it once, see Runner::Run.
    Ending Run();

    /// Lets go of the data, which stays for the caller to read. After the run.
    void ReleaseData() { m_services.data.Clear(); }

    /// Ends the run, and the one that it waits for; the first cause counts. Any thread may call.
    void End(Cause cause) noexcept;

    /// See Runner::StillHeld.
    std::vector<std::string> StillHeld() const;

private:
    /// What came of one try of a step.
    struct Attempt {
        std::optional<Ending> failure{};     ///< A command or a called procedure failed.
        std::optional<std::string> chosen{}; ///< The transition.
        bool isFinal = false;                ///< The choice is that of a monitor.
        bool timedOut = false;
        std::string timedOutReason{};
    };

    static constexpr std::int64_t longestWait = 1'000'000'000;

    void RecordBeginning();
    /// What the parameters of the engine are called.
    void RecordParameters();
    Ending RunSteps();
    /// Tries the step as often as it says.
    Attempt RunStep(const Step& step);
    Attempt TryStep(const Step& step);
    /// Waits as the step says. Whether it has waited to the end.
    bool WaitInStep(const Step& step);
    bool WantsRetry(const Step& step, const Attempt& attempt) const;
    /// Ends what the try has left running, and waits as the step says. Whether there is to be another try:
    /// not if the run is to end, or a monitor has chosen, which `attempt` then says.
    bool WaitForNextTry(const Step& step, Attempt& attempt, std::int64_t number);
    static std::string ReasonOfRetry(const Attempt& attempt);
    /// Runs the commands of a step, up to the first one that fails or after which a transition has been
    /// chosen. Returns the id of the one that failed; nothing if none did.
    std::optional<std::string> RunCommandsOf(const Step& step);
    /// Runs the procedure that the step calls; returns its ending unless it passed.
    std::optional<Ending> RunCalled(const ProcedureCall& call);
    Ending RunAsCalled(ProcedureRun& called);
    void NoteFailureOfCalled(const ProcedureCall& call, const ProcedureRun& called, const Ending& ending,
                             bool isStopped);
    bool IsMonitor(const std::string& commandId) const;
    /// The step to which a transition leads; null if there is none.
    const std::string* StepOf(const Step& step, const std::string& transition) const;
    /// What becomes of a transition that the current command chooses. Any thread may call.
    Acceptance AcceptanceOf(const Step& step, const std::string& transition);
    /// The step to which `step` leads, null if there is none. `key` becomes the key of the file that names
    /// it.
    const std::string* TargetOf(const Step& step, const Attempt& attempt, std::string& key) const;
    /// How the procedure ends in a step that leads nowhere.
    Ending EndingIn(const std::string& step, const Attempt& attempt) const;
    Ending EndingBy(Cause cause) const;

    // Waiting. Each returns whether it has waited to the end; a choice of a transition ends the first three.
    /// Whether the question was answered, or a transition chosen meanwhile.
    bool Ask(const Step& step);
    bool Pause(std::int64_t milliseconds);
    bool AwaitConditions(const std::string& name);
    bool AwaitCommands(Wait wait);
    /// Waits until `isOver` returns true, the step's time has run out or the run is to end. Looks again after
    /// `period`.
    template <class IsOver>
    bool WaitUntil(IsOver isOver, DWORD period);
    void BeginWait(const Step& step, std::string what);
    void NoteWait(std::string what);
    void EndWait();
    /// Counts conditions that could not be read until the step's time ran out.
    void NoteUnreadable(const Step& step);
    void EndCalled(Cause cause) noexcept;
    /// The time of the current try has run out. On the watchdog's thread.
    void ExpireStep() noexcept;
    /// What the run waits for, what still runs, and what has not worked since when.
    std::string DescribeWaiting() const;

    void RunFinally();
    void EndPersistentCommands();
    std::vector<Measurements::Result> RecordMeasurements();
    void RecordLeft();

    HRESULT RunCommand(const std::string& id);
    /// The message box of a command, on the command's thread.
    void ShowMessage(const std::string& caption, const std::string& text);
    /// Ends the whole run, because a question has no answer, or one that it does not take.
    void EndUnanswered(const Prompt& prompt, const std::string& mistake);
    void NoteMissingResult(const std::string& commandId, const std::string& entry);
    /// A call that is over. Any thread may call.
    void Watch(const Record& call);
    void NoteWrite(const std::string& entry, Value value);
    /// Whether failures of that command or operation are expected in the current step.
    bool MayFail(const std::string& command, const std::string& operation) const;

    /// On the thread that has ended.
    void RecordThreadEnded(std::uint32_t cookie, HRESULT result) noexcept;

    const Procedure& m_procedure;
    RunShared& m_shared;
    const MessageScope::Show m_showMessage = [this](const std::string& caption, const std::string& text) {
        ShowMessage(caption, text);
    };
    ProcedureRun* const m_outer;
    std::set<std::string> m_messages; ///< The entries that hold made-up messages of conditions.
    FailedCalls m_failedCalls;
    FailedCalls m_failedCleanUp;
    Measurements m_measurements;
    std::vector<std::string> m_failedProcedures; ///< What called ones that failed ended with.
    HRESULT m_lastEvaluation = S_OK;             ///< Of the conditions that the step waits for.
    std::vector<std::pair<std::string, CComVariant>> m_arguments;
    std::vector<std::unique_ptr<ProcedureRun>>
        m_stillHeld; ///< Called ones whose objects commands still hold.
    std::atomic<Cause> m_cause{Cause::None};
    std::atomic<bool> m_ending{false};       ///< Whether requests are refused.
    std::atomic<bool> m_inFinally{false};    ///< Whether the clean-up has begun.
    std::atomic<bool> m_stepExpired{false};  ///< Whether the time of the current try has run out.
    std::atomic<bool> m_stoppingStep{false}; ///< Whether the commands of a try are being stopped.
    std::atomic<bool> m_executing{false};    ///< Whether the step runs its commands, instead of waiting.

    mutable std::mutex m_access;      ///< Protects what follows.
    ProcedureRun* m_called = nullptr; ///< The run that this one waits for.
    const Step* m_step = nullptr;     ///< The current one.
    std::string m_stepId;
    std::string m_waitsFor; ///< Empty if the run does not wait.
    std::int64_t m_waitsSince = 0;

    Watchdog m_watchdog;
    CommandExecution m_execution;
    Services m_services; ///< Destroyed first: its threads may use everything above.
};

} // namespace vant::host
