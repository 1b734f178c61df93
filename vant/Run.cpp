#include "vant/Run.h"

#include "host/procedure/ConditionReader.h"
#include "host/procedure/EngineReader.h"
#include "host/procedure/ProcedureReader.h"
#include "host/record/Json.h"
#include "host/record/ResultReport.h"
#include "host/runner/CommandCheck.h"
#include "host/runner/LoadedModule.h"
#include "host/runner/RegisteredClasses.h"
#include "host/runner/Runner.h"
#include "platform/Clock.h"
#include "platform/Process.h"
#include "platform/Utf8.h"
#include "vant/ConsoleReport.h"
#include "vant/MessagePrompt.h"

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string_view>
#include <system_error>

namespace vant::program {

using namespace host;

namespace {

/// Ends the run with an exit code and a message.
class Stop : public std::runtime_error {
public:
    Stop(ExitCode code, const std::string& message) : std::runtime_error(message), m_code(code) {}
    ExitCode Code() const noexcept { return m_code; }

private:
    ExitCode m_code;
};

std::mutex interruption;
Runner* interruptible = nullptr;

void Interrupt() {
    const std::lock_guard lock(interruption);
    if (interruptible)
        interruptible->Abort();
}

void SetInterruptible(Runner* runner) {
    const std::lock_guard lock(interruption);
    interruptible = runner;
}

/// Lets the user interrupt a run for as long as this object lives.
class InterruptScope {
public:
    explicit InterruptScope(Runner& runner) {
        SetInterruptible(&runner);
        OnFirstInterrupt(Interrupt);
    }
    ~InterruptScope() { SetInterruptible(nullptr); }
    InterruptScope(const InterruptScope&) = delete;
    InterruptScope& operator=(const InterruptScope&) = delete;
};

void Print(const Diagnostics& found, const std::string& file) {
    for (const Diagnostic& each : found.Sorted())
        std::cerr << each.Text(file) << '\n';
}

std::string ReadInput(const std::string& file) {
    try {
        return ReadFile(PathFromUtf8(file));
    } catch (const std::exception& failure) {
        throw Stop(ExitCode::WrongInput, file + ": " + failure.what());
    }
}

/// An engine that stands in a file of its own.
struct EngineFile {
    std::string name; ///< Empty where there is none.
    Diagnostics found;
};

/// Reads the engine file that stands in for the procedure's own engine or, without one, the one that the
/// procedure names. A file that the procedure names and that cannot be read is the procedure's mistake.
EngineFile ReadEngineFile(const RunOptions& options, Procedure& procedure, Diagnostics& found) {
    EngineFile engine;
    if (!options.engine.empty()) {
        procedure.engine = ReadEngine(ReadInput(options.engine), engine.found);
        engine.name = options.engine;
        return engine;
    }
    if (!procedure.engineFile)
        return engine;
    const auto& [name, position] = *procedure.engineFile;
    const std::filesystem::path path = PathFromUtf8(options.procedure).parent_path() / PathFromUtf8(name);
    try {
        procedure.engine = ReadEngine(ReadFile(path), engine.found);
        engine.name = FileName(path);
    } catch (const std::exception& failure) {
        found.Error(position, "cannot read the engine '" + name + "': " + failure.what());
    }
    return engine;
}

std::unique_ptr<CommandFactory> OpenCommands(const RunOptions& options) {
    if (options.registered)
        return std::make_unique<RegisteredClasses>();
    try {
        return std::make_unique<LoadedModule>(PathFromUtf8(options.module));
    } catch (const std::exception& failure) {
        throw Stop(ExitCode::Broken, "cannot load the module " + options.module + ": " + failure.what());
    }
}

void OpenJournal(std::ofstream& out, const RunOptions& options, const std::string& engineFile) {
    const std::filesystem::path file = PathFromUtf8(options.journal);
    std::error_code unknown;
    if (std::filesystem::equivalent(file, PathFromUtf8(options.procedure), unknown))
        throw Stop(ExitCode::WrongInput, options.journal + ": the journal would overwrite the procedure");
    if (!engineFile.empty() && std::filesystem::equivalent(file, PathFromUtf8(engineFile), unknown))
        throw Stop(ExitCode::WrongInput, options.journal + ": the journal would overwrite the engine");
    if (!options.registered && std::filesystem::equivalent(file, PathFromUtf8(options.module), unknown))
        throw Stop(ExitCode::WrongInput, options.journal + ": the journal would overwrite the module");
    errno = 0;
    out.open(file, std::ios::binary | std::ios::trunc);
    if (!out)
        throw Stop(ExitCode::WrongInput, options.journal + ": cannot write the journal: " +
                                             std::generic_category().message(errno ? errno : EIO));
}

bool WantsColour() {
    const char* const noColour = std::getenv("NO_COLOR");
    return OutputIsTerminal() && !(noColour && *noColour);
}

ExitCode ExitCodeOf(Verdict verdict) {
    switch (verdict) {
    case Verdict::Passed:
        return ExitCode::Passed;
    case Verdict::Failed:
        return ExitCode::Failed;
    default:
        return ExitCode::Aborted;
    }
}

/// What must hold after every run, however it ended.
void CheckAfterwards(const Runner& runner, const CommandFactory& commands) {
    if (const auto held = runner.StillHeld(); !held.empty()) {
        std::string names;
        for (const std::string& name : held)
            names += (names.empty() ? "" : ", ") + name;
        throw Stop(ExitCode::Broken, "commands still hold parts of the host after the run: " + names);
    }
    if (!commands.CanUnload())
        throw Stop(ExitCode::Broken, "the module still has live objects after the run");
}

ExitCode RunChecked(const RunOptions& options, const Procedure& procedure, const std::string& engineFile,
                    const CommandFactory& commands) {
    std::ofstream journalFile;
    Journal journal;
    ResultReport result;
    if (!options.journal.empty()) {
        OpenJournal(journalFile, options, engineFile);
        journal.Observe(JsonLinesWriter(journalFile));
    }
    if (options.json)
        journal.Observe([&result](const Record& record) { result(record); });
    else
        journal.Observe(ConsoleReport(std::cout, WantsColour()));

    Runner runner(procedure, commands, journal);
    Verdict verdict{};
    {
        // What a program reads from standard output stays JSON.
        const MessagePrompt prompt(options.json ? std::cerr : std::cout, std::cin, options.answersMessages);
        const InterruptScope scope(runner);
        const ClockParticipant participant;
        verdict = runner.Run();
    }
    if (options.json)
        std::cout << result.Result().dump(2) << '\n';
    std::cout.flush();
    journalFile.close();
    CheckAfterwards(runner, commands);
    if (!options.journal.empty() && (!journalFile || !journal.IsComplete()))
        throw Stop(ExitCode::Broken, options.journal + ": the journal could not be written completely");
    if (!std::cout)
        throw Stop(ExitCode::Broken, "the report could not be written completely");
    return ExitCodeOf(verdict);
}

/// How time passes. Before the module is loaded: from then on it waits in this time.
void SetTime(const RunOptions& options) {
    constexpr double slowest = 0.001;
    constexpr double fastest = 1000000;
    // What is not a number lies within no limits.
    if (!(options.speed >= slowest && options.speed <= fastest))
        throw Stop(ExitCode::WrongInput, "--speed must lie between 0.001 and 1000000");
    if (options.virtualTime)
        UseVirtualTime();
    else
        UseRealTime(options.speed);
}

ExitCode ReadAndRun(const RunOptions& options) {
    SetTime(options);
    Diagnostics found;
    const std::string text = ReadInput(options.procedure);
    Procedure procedure = ReadProcedure(text, found);
    const EngineFile engine = ReadEngineFile(options, procedure, found);
    const auto printAll = [&] {
        Print(found, options.procedure);
        Print(engine.found, engine.name);
    };
    std::unique_ptr<CommandFactory> commands;
    try {
        commands = OpenCommands(options);
        CheckCommands(procedure, *commands, found);
        if (!engine.found.HasErrors())
            CheckConditionParameters(procedure, found);
    } catch (const std::exception&) {
        // The files' own mistakes are worth telling all the same.
        printAll();
        throw;
    }
    printAll();
    if (found.HasErrors() || engine.found.HasErrors())
        return ExitCode::WrongInput;
    return RunChecked(options, procedure, engine.name, *commands);
}

} // namespace

ExitCode Run(const RunOptions& options) {
    try {
        return ReadAndRun(options);
    } catch (const Stop& stop) {
        std::cerr << "vant: " << stop.what() << '\n';
        return stop.Code();
    } catch (const std::exception& failure) {
        std::cerr << "vant: " << failure.what() << '\n';
        return ExitCode::Broken;
    } catch (const CComException& failure) {
        std::cerr << "vant: a platform call failed: " << ToText(failure.Code()) << '\n';
        return ExitCode::Broken;
    }
}

} // namespace vant::program
