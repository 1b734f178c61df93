#include "vant/CommandLine.h"

#include "platform/DynamicLibrary.h"
#include "platform/Process.h"
#include "platform/Utf8.h"
#include "vant/Check.h"
#include "vant/Classes.h"
#include "vant/Completion.h"
#include "vant/Diff.h"
#include "vant/EngineRun.h"
#include "vant/Manual.h"
#include "vant/NewFile.h"
#include "vant/ProgramText.h"
#include "vant/Registration.h"
#include "vant/Replay.h"
#include "vant/Run.h"
#include "vant/Test.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <cstdint>
#include <functional>
#include <iostream>
#include <memory>
#include <string>

namespace vant::program {

namespace {

/// An empty file name, as a shell makes of a variable that is not set, is a mistake.
std::string CheckNotEmpty(const std::string& text) {
    return text.empty() ? "must not be empty" : "";
}

std::string CheckSeed(const std::string& text) {
    std::uint64_t seed = 0;
    const auto [end, mistake] = std::from_chars(text.data(), text.data() + text.size(), seed);
    return mistake == std::errc() && end == text.data() + text.size()
               ? ""
               : "must be a whole number from 0 to 18446744073709551615, not '" + text + "'";
}

std::string DefaultModule() {
    return PathToUtf8(ProgramFolder() / LibraryFileName("VantCommands"));
}

/// Calls `perform` with the options once the arguments have been read. CLI11 writes into the options until
/// then, so they live as long as the callback does.
template <class Options>
void OnSelected(CLI::App& command, const std::shared_ptr<Options>& options, ExitCode& result,
                std::function<ExitCode(const Options&)> perform) {
    // File names may begin with a slash on every system.
    command.allow_windows_style_options(false);
    command.callback([options, &result, perform = std::move(perform)] { result = perform(*options); });
}

CLI::Option* AddModule(CLI::App& command, std::string& module) {
    module = DefaultModule();
    return command
        .add_option("--module", module,
                    "The module of the command classes; without it, the one beside the program")
        ->check(CheckNotEmpty)
        ->type_name("PATH");
}

void AddRun(CLI::App& app, ExitCode& result) {
    CLI::App& run = *app.add_subcommand("run", "Run a procedure file");
    const auto options = std::make_shared<RunOptions>();
    run.add_option("FILE", options->procedure, "The procedure, a TOML file; - for the standard input")
        ->required()
        ->check(CheckNotEmpty);
    run.add_option("--engine", options->engine, "Run on the engine in this file, not on the procedure's own")
        ->check(CheckNotEmpty)
        ->type_name("FILE");
    run.add_option("--journal", options->journal, "Write every host call to this file, as lines of JSON")
        ->check(CheckNotEmpty)
        ->type_name("PATH");
    run.add_flag("--force", options->force, "Let the journal replace a file that is not a journal");
    CLI::Option* const module = AddModule(run, options->module);
    CLI::Option* const json = run.add_flag("--json", options->json, "Print the result as JSON");
    CLI::Option* const quiet = run.add_flag("--quiet", options->quiet,
                                            "Print the verdict, and measurements that failed or are missing");
    run.add_flag("--verbose", options->verbose, "Print every host call")->excludes(json)->excludes(quiet);
    quiet->excludes(json);
    run.add_flag("--strict", options->strict, "Refuse a procedure with warnings, too");
    CLI::Option* const yes =
        run.add_flag("--yes", options->closesMessages,
                     "Wait for no operator: close every message, answer every question with its default");
    run.add_option("--answers", options->answers, "Take the answers of the operator from this TOML file")
        ->check(CheckNotEmpty)
        ->type_name("FILE")
        ->excludes(yes);
    run.add_flag("--registered", options->registered,
                 "Create the commands by their registered ProgIDs instead of loading a module")
        ->excludes(module);
    CLI::Option* const virtualTime =
        run.add_flag("--virtual", options->virtualTime, "Let virtual time pass instead of waiting");
    run.add_option("--speed", options->speed, "Let time pass so many times as fast")
        ->type_name("N")
        ->excludes(virtualTime);
    run.add_option("--max-time", options->maxTime,
                   "End the run as an error after this time, instead of 'maxTime'")
        ->type_name("DURATION");
    run.add_option("--max-steps", options->maxSteps,
                   "End the run as an error after so many steps, instead of 'maxSteps'")
        ->type_name("N")
        ->check(CLI::PositiveNumber);
    run.add_flag("--allow-failed-calls", options->allowFailedCalls,
                 "Let the run pass although host calls have failed");
    run.add_option("--tag", options->tags,
                   "Add this to result and journal, such as a serial number; can be repeated")
        ->type_name("KEY=VALUE")
        ->allow_extra_args(false);
    run.footer("Exit codes: 0 passed, 1 failed, 2 wrong usage or file, 3 module or host failure, 4 error: "
               "the bench or "
               "a command could not do its work, 130 aborted.");
    OnSelected<RunOptions>(run, options, result, Run);
}

void AddCheck(CLI::App& app, ExitCode& result) {
    CLI::App& check =
        *app.add_subcommand("check", "Look for mistakes in procedures and engines without running them");
    const auto options = std::make_shared<CheckOptions>();
    check
        .add_option("FILE", options->files,
                    "Procedures, engines, test files or answers; - for the standard input")
        ->required()
        ->check(CheckNotEmpty);
    check
        .add_option("--engine", options->engine,
                    "Check against the engine in this file, not the procedures' own")
        ->check(CheckNotEmpty)
        ->type_name("FILE");
    check.add_flag("--json", options->json, "Print the messages as JSON");
    check.add_flag("--strict", options->strict, "Treat warnings as errors");
    check.footer(
        "Exit codes: 0 no errors (with --strict: and no warnings), 2 mistakes or wrong usage, 3 the messages "
        "could not be written.");
    OnSelected<CheckOptions>(check, options, result, Check);
}

void AddTest(CLI::App& app, ExitCode& result) {
    CLI::App& test = *app.add_subcommand("test", "Run test cases in virtual time, many at once");
    const auto options = std::make_shared<TestOptions>();
    test.add_option("PATH", options->paths,
                    "Test files, procedures, or folders of them; without one, the current folder")
        ->check(CheckNotEmpty);
    test.add_option("--jobs", options->jobs, "So many at the same time; without it, one for each processor")
        ->type_name("N")
        ->check(CLI::Range(1, 1024));
    test.add_option("--filter", options->filter, "Only the cases whose name contains this text")
        ->check(CheckNotEmpty)
        ->type_name("TEXT");
    test.add_option("--json", options->json, "Write the results to this file as JSON")
        ->check(CheckNotEmpty)
        ->type_name("PATH");
    test.add_option("--junit", options->junit, "Write the results to this file as JUnit XML")
        ->check(CheckNotEmpty)
        ->type_name("PATH");
    CLI::Option* const coverage =
        test.add_flag("--coverage", options->coverage, "Print what the cases have reached of the procedures");
    test.add_option("--fail-under", options->failUnder, "Fail if the coverage is less")
        ->type_name("PERCENT")
        ->check(CLI::Range(0.0, 100.0))
        ->needs(coverage);
    CLI::Option* const faults =
        test.add_flag("--faults", options->faults,
                      "Run each case that passes again and again, with one fault after the other");
    test.add_option("--fault-repeats", options->faultRepeats,
                    "Let so many of the calls fail that a command repeats; 0: all of them")
        ->type_name("N")
        ->capture_default_str()
        ->needs(faults);
    test.add_flag("--update", options->update,
                  "Change the test files to expect the verdict, ending and path that have come");
    test.add_option("--case-timeout", options->caseTimeout, "The longest real time that a case may take")
        ->type_name("DURATION")
        ->capture_default_str();
    AddModule(test, options->module);
    test.add_flag("--worker", options->worker)->group(""); // Not shown: the program starts itself so.
    test.footer(
        "Exit codes: 0 all passed, 1 some failed, 2 wrong usage or file, 3 module or host failure, 130 "
        "interrupted.");
    OnSelected<TestOptions>(test, options, result, Test);
}

template <class Options>
void AddComparison(CLI::App& command, Options& options) {
    command.add_option("--time", options.time, "Differences of times up to this duration do not count")
        ->type_name("DURATION")
        ->capture_default_str();
    command.add_option("--value", options.value, "Differences of numbers up to this one do not count")
        ->type_name("NUMBER")
        ->check(CLI::NonNegativeNumber)
        ->capture_default_str();
    command.add_flag("--json", options.json, "Print the differences as JSON");
}

void AddReplay(CLI::App& app, ExitCode& result) {
    CLI::App& replay =
        *app.add_subcommand("replay", "Run a procedure on what a journal has recorded, and compare the runs");
    const auto options = std::make_shared<ReplayOptions>();
    replay.add_option("JOURNAL", options->journal, "The journal of an earlier run of the procedure")
        ->required()
        ->check(CheckNotEmpty);
    replay.add_option("FILE", options->procedure, "The procedure, a TOML file")
        ->required()
        ->check(CheckNotEmpty);
    replay
        .add_option("--engine", options->engine, "The engine of the earlier run, if not the procedure's own")
        ->check(CheckNotEmpty)
        ->type_name("FILE");
    AddModule(replay, options->module);
    AddComparison(replay, *options);
    replay.footer(
        "Exit codes: 0 no differences, 1 differences, 2 wrong usage or file, 3 module or host failure, "
        "130 interrupted.");
    OnSelected<ReplayOptions>(replay, options, result, Replay);
}

void AddDiff(CLI::App& app, ExitCode& result) {
    CLI::App& diff = *app.add_subcommand("diff", "Compare two journals by what they mean");
    const auto options = std::make_shared<DiffOptions>();
    diff.add_option("A", options->a, "A journal, as vant run --journal writes it")
        ->required()
        ->check(CheckNotEmpty);
    diff.add_option("B", options->b, "The journal with which it is compared")
        ->required()
        ->check(CheckNotEmpty);
    AddComparison(diff, *options);
    diff.footer(
        "Exit codes: 0 no differences, 1 differences, 2 wrong usage or file, 3 the differences could not be "
        "written.");
    OnSelected<DiffOptions>(diff, options, result, Diff);
}

void AddEngine(CLI::App& app, ExitCode& result) {
    CLI::App& engine =
        *app.add_subcommand("engine", "Let an engine run without a procedure and print its parameters");
    const auto options = std::make_shared<EngineRunOptions>();
    engine.add_option("FILE", options->file, "The engine, or a procedure that has one; a TOML file")
        ->required()
        ->check(CheckNotEmpty);
    engine.add_option("--for", options->duration, "How long: a number with ms, s, min or h")
        ->type_name("DURATION")
        ->capture_default_str();
    engine.add_option("--every", options->every, "The time from one row to the next")
        ->type_name("DURATION")
        ->capture_default_str();
    engine.add_flag("--csv", options->csv, "Print comma-separated values instead of a table");
    engine.add_option("--seed", options->seed, "The seed of the noise, in place of the engine's")
        ->check(CheckSeed)
        ->type_name("NUMBER");
    engine.add_option("--set", options->writes, "Write a parameter at a time; can be given repeatedly")
        ->type_name("ID=VALUE@TIME")
        ->allow_extra_args(false);
    engine.footer("Exit codes: 0 done, 2 wrong usage or file, 3 the output could not be written.");
    OnSelected<EngineRunOptions>(engine, options, result, RunEngine);
}

void AddClasses(CLI::App& app, ExitCode& result) {
    CLI::App& classes = *app.add_subcommand("classes", "List the command classes and their properties");
    const auto options = std::make_shared<ClassesOptions>();
    classes.add_option("CLASS", options->name, "Only this class")->check(CheckNotEmpty);
    classes.add_flag("--json", options->json, "Print JSON");
    classes.footer("Exit codes: 0 done, 2 wrong usage, 3 the list could not be written.");
    OnSelected<ClassesOptions>(classes, options, result, PrintClasses);
}

void AddRegistration(CLI::App& app, ExitCode& result, const char* name, const char* purpose,
                     ExitCode (*perform)(const RegistrationOptions&)) {
    CLI::App& command = *app.add_subcommand(name, purpose);
    const auto options = std::make_shared<RegistrationOptions>();
    AddModule(command, options->module);
    command.add_flag("--user", options->userOnly, "For the current user only");
    command.footer("Exit codes: 0 done, 2 wrong usage, 3 the module could not do it.");
    OnSelected<RegistrationOptions>(command, options, result, perform);
}

void AddCatalogue(CLI::App& app, ExitCode& result) {
    CLI::App& catalogue = *app.add_subcommand("catalogue", "List the registered classes and their modules");
    catalogue.footer("Exit codes: 0 done, 2 wrong usage, 3 the list could not be written.");
    struct None {};
    OnSelected<None>(catalogue, std::make_shared<None>(), result,
                     [](const None&) { return PrintCatalogue(); });
}

/// A subcommand that consists of subcommands, of which it needs one.
CLI::App& AddGroup(CLI::App& app, const char* name, const char* purpose) {
    CLI::App& group = *app.add_subcommand(name, purpose);
    group.require_subcommand(0, 1);
    // Only now: an unknown subcommand is a better message than a missing one.
    group.callback([&group] {
        if (group.get_subcommands().empty())
            throw CLI::RequiredError("A subcommand of " + group.get_name());
    });
    return group;
}

void AddNewKind(CLI::App& group, ExitCode& result, FileKind kind, const char* name, const char* purpose) {
    CLI::App& command = *group.add_subcommand(name, purpose);
    const auto options = std::make_shared<NewFileOptions>();
    options->kind = kind;
    command
        .add_option("NAME", options->name,
                    "The file to write, with or without the ending " + EndingOf(kind) + " of its name")
        ->required()
        ->check(CheckNotEmpty);
    command.add_flag("--force", options->force, "Replace a file that exists");
    command.footer(
        "Exit codes: 0 done, 2 wrong usage, or the file cannot be created, 3 the file could not be "
        "written completely.");
    OnSelected<NewFileOptions>(command, options, result, WriteNewFile);
}

void AddNew(CLI::App& app, ExitCode& result) {
    CLI::App& group = AddGroup(app, "new", "Write a commented file to start from");
    AddNewKind(group, result, FileKind::Procedure, "procedure",
               "Write a procedure with an engine of its own");
    AddNewKind(group, result, FileKind::Engine, "engine", "Write an engine");
    AddNewKind(group, result, FileKind::Test, "test", "Write test cases for the procedure of the same name");
}

ExitCode Print(const std::string& text) {
    if (!(std::cout << text).flush())
        throw Failure(ExitCode::Broken, "the text could not be written completely");
    return ExitCode::Passed;
}

/// A subcommand that prints a text about the whole program.
void AddProgramText(CLI::App& group, const CLI::App& program, ExitCode& result, const char* name,
                    const char* purpose, std::string (*make)(const CommandText&)) {
    CLI::App& command = *group.add_subcommand(name, purpose);
    command.footer("Exit codes: 0 done, 2 wrong usage, 3 the text could not be written completely.");
    command.callback([&program, &result, make] { result = Print(make(DescribeProgram(program))); });
}

void AddCompletion(CLI::App& app, ExitCode& result) {
    CLI::App& group =
        AddGroup(app, "completion", "Print a script with which a shell completes command lines");
    AddProgramText(group, app, result, "bash", "Print the script for bash", BashCompletion);
    AddProgramText(group, app, result, "zsh", "Print the script for zsh", ZshCompletion);
    AddProgramText(group, app, result, "fish", "Print the script for fish", FishCompletion);
    AddProgramText(group, app, result, "powershell", "Print the script for PowerShell", PowerShellCompletion);
}

} // namespace

void DeclareCommandLine(CLI::App& app, ExitCode& result) {
    app.name("vant");
    app.description("Runs diagnostic procedures on a bench host.");
    app.set_version_flag("--version", "vant " VANT_VERSION);
    app.require_subcommand(0, 1);
    app.allow_windows_style_options(false);
    AddRun(app, result);
    AddCheck(app, result);
    AddTest(app, result);
    AddDiff(app, result);
    AddReplay(app, result);
    AddEngine(app, result);
    AddClasses(app, result);
    AddRegistration(app, result, "register", "Register the module's classes with the system", Register);
    AddRegistration(app, result, "unregister", "Remove the registration", Unregister);
    AddCatalogue(app, result);
    AddNew(app, result);
    AddCompletion(app, result);
    AddProgramText(app, app, result, "manual", "Print the manual page, for man", ManualPage);
}

} // namespace vant::program
