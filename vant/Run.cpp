#include "vant/Run.h"

#include "host/procedure/InputFile.h"
#include "host/procedure/Loading.h"
#include "host/record/JournalFile.h"
#include "host/record/Json.h"
#include "host/record/ResultReport.h"
#include "host/runner/CommandCheck.h"
#include "host/runner/ReadyOperator.h"
#include "host/runner/RegisteredClasses.h"
#include "host/runner/Runner.h"
#include "host/text/Duration.h"
#include "platform/ClassRegistration.h"
#include "platform/Clock.h"
#include "platform/DynamicLibrary.h"
#include "platform/Process.h"
#include "platform/Utf8.h"
#include "vant/ConsoleReport.h"
#include "vant/InterruptScope.h"
#include "vant/Module.h"
#include "vant/Terminal.h"
#include "vant/TerminalOperator.h"

#include <iostream>
#include <memory>
#include <optional>
#include <stdexcept>
#include <system_error>
#include <utility>
#include <vector>

namespace vant::program {

using namespace host;

namespace {

/// What a run needs from files.
struct Loaded {
    LoadedProcedure run;
    std::vector<ReadyAnswer> answers;
};

std::unique_ptr<CommandFactory> OpenCommands(const RunOptions& options) {
    if (options.registered)
        return std::make_unique<RegisteredClasses>();
    return OpenModule(options.module);
}

/// The files that this run reads and writes, and those that every run needs.
std::vector<FileInUse> FilesInUse(const RunOptions& options, const LoadedFiles& files) {
    std::vector<FileInUse> inUse;
    for (const LoadedFile& each : files.All())
        inUse.push_back({each.what, PathFromUtf8(each.name)});
    if (options.registered) {
        for (const RegisteredClass& each : ListRegisteredClasses())
            inUse.push_back({"a registered module", PathFromUtf8(each.module)});
    } else {
        inUse.push_back({"the module", PathFromUtf8(options.module)});
    }
    inUse.push_back({"the platform library", ProgramFolder() / LibraryFileName("VantPlatform")});
    if (auto catalogue = ClassCatalogueFile())
        inUse.push_back({"the class catalogue", std::move(*catalogue)});
    // The report, if it goes to a file. On a system without this name there is no such file.
    std::error_code unknown;
    if (const std::filesystem::path report = "/dev/stdout"; std::filesystem::is_regular_file(report, unknown))
        inUse.push_back({"the report", report});
    return inUse;
}

std::optional<JournalFile> OpenJournal(const RunOptions& options, const LoadedFiles& files) {
    if (options.journal.empty())
        return std::nullopt;
    try {
        return std::make_optional<JournalFile>(PathFromUtf8(options.journal), FilesInUse(options, files),
                                               options.force);
    } catch (const JournalFileError& failure) {
        throw Failure(ExitCode::WrongInput, options.journal + ": " + failure.what());
    }
}

ConsoleReport::Style StyleOf(const RunOptions& options) {
    return {.coloured = WantsColour(),
            .detail = options.quiet     ? Detail::Quiet
                      : options.verbose ? Detail::Verbose
                                        : Detail::Normal};
}

/// In virtual time nothing is to be waited for.
bool WantsLiveLine(const RunOptions& options) {
    return WantsColour() && !options.quiet && !options.virtualTime;
}

ExitCode ExitCodeOf(Verdict verdict) {
    switch (verdict) {
    case Verdict::Passed:
        return ExitCode::Passed;
    case Verdict::Failed:
        return ExitCode::Failed;
    case Verdict::Error:
        return ExitCode::Error;
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
        throw Failure(ExitCode::Broken, "commands still hold parts of the host after the run: " + names);
    }
    if (!commands.CanUnload())
        throw Failure(ExitCode::Broken, "the module still has live objects after the run");
}

RunSettings SettingsOf(const RunOptions& options, Operator& answering) {
    RunSettings settings{
        .maxSteps = options.maxSteps, .allowFailedCalls = options.allowFailedCalls, .answering = &answering};
    if (!options.maxTime.empty()) {
        settings.maxTime = ParseDuration(options.maxTime);
        if (settings.maxTime.value_or(0) == 0)
            throw Failure(ExitCode::WrongInput,
                          "--max-time needs a duration such as 500ms, 60s, 10min or 1h, not '" +
                              options.maxTime + "'");
    }
    for (const std::string& tag : options.tags) {
        const std::size_t equals = tag.find('=');
        if (equals == std::string::npos || equals == 0)
            throw Failure(ExitCode::WrongInput,
                          "--tag needs KEY=VALUE, such as serial=4711, not '" + tag + "'");
        settings.tags.insert_or_assign(tag.substr(0, equals), tag.substr(equals + 1));
    }
    return settings;
}

/// Answers prompts as the user wants. What a program reads from standard output stays JSON.
std::unique_ptr<Operator> MakeOperator(const RunOptions& options, ConsoleReport* report) {
    std::ostream& out = options.json ? std::cerr : std::cout;
    const bool reportShowsPrompts = report && !options.quiet;
    if (options.closesMessages)
        return std::make_unique<AbsentOperator>(reportShowsPrompts ? nullptr : &out);
    return std::make_unique<TerminalOperator>(out, report, reportShowsPrompts);
}

ExitCode RunLoaded(const RunOptions& options, const Loaded& loaded, const CommandFactory& commands) {
    Journal journal;
    ResultReport result;
    std::optional<JournalFile> journalFile = OpenJournal(options, loaded.run.files);
    if (journalFile)
        journal.Observe([&journalFile](const Record& record) { journalFile->Write(record); });
    std::optional<ConsoleReport> report;
    if (options.json)
        journal.Observe([&result](const Record& record) { result(record); });
    else
        journal.Observe(
            [&shown = report.emplace(std::cout, StyleOf(options))](const Record& record) { shown(record); });

    TakeInterrupts(); // Before the runner starts a thread, which inherits the signal mask.
    if (report && WantsLiveLine(options))
        report->GoLive([&journal] { return journal.Now(); });
    std::optional<ReadyOperator> ready;
    if (!options.answers.empty())
        ready.emplace(loaded.answers);
    const auto other = MakeOperator(options, report ? &*report : nullptr);
    Operator& answering = ready ? static_cast<Operator&>(*ready) : *other;
    Runner runner(loaded.run.procedure, commands, journal, SettingsOf(options, answering));
    Verdict verdict{};
    {
        const InterruptScope scope([&runner] { runner.Abort(); });
        const ClockParticipant participant;
        verdict = runner.Run();
    }
    if (options.json)
        std::cout << result.Result().dump(2) << '\n';
    std::cout.flush();
    if (ready)
        std::cerr << ready->Unused().Print(options.answers);
    const bool journalIsWhole = !journalFile || (journalFile->Close() && journal.IsComplete());
    CheckAfterwards(runner, commands);
    if (!journalIsWhole)
        throw Failure(ExitCode::Broken, options.journal + ": the journal could not be written completely");
    if (!std::cout)
        throw Failure(ExitCode::Broken, "the report could not be written completely");
    return ExitCodeOf(verdict);
}

/// How time passes. Before the module is loaded: from then on it waits in this time.
void SetTime(const RunOptions& options) {
    constexpr double slowest = 0.001;
    constexpr double fastest = 1000000;
    // NaN lies within no limits.
    if (!(options.speed >= slowest && options.speed <= fastest))
        throw Failure(ExitCode::WrongInput, "--speed must lie between 0.001 and 1000000");
    if (options.virtualTime)
        UseVirtualTime();
    else
        UseRealTime(options.speed);
}

Loaded Load(const RunOptions& options) {
    try {
        Loaded loaded{LoadProcedure(options.procedure, options.engine), {}};
        if (!options.answers.empty())
            loaded.answers = LoadAnswers(options.answers, loaded.run.files);
        return loaded;
    } catch (const InputError& failure) {
        throw Failure(ExitCode::WrongInput, failure.what());
    }
}

} // namespace

ExitCode Run(const RunOptions& options) {
    SetTime(options);
    Loaded loaded = Load(options);
    auto& [procedure, called, files] = loaded.run;
    std::unique_ptr<CommandFactory> commands;
    try {
        commands = OpenCommands(options);
        CheckCommands(procedure, *commands, files.Main().found);
        for (const CalledProcedure& each : called)
            CheckCommands(*each.procedure, *commands, each.file->found);
    } catch (const std::exception&) {
        // The files' own mistakes are worth telling all the same.
        std::cerr << files.Print();
        throw;
    }
    std::cerr << files.Print();
    if (files.HasErrors() || (options.strict && files.HasWarnings()))
        return ExitCode::WrongInput;
    return RunLoaded(options, loaded, *commands);
}

} // namespace vant::program
