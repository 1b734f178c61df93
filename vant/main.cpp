// The command-line program of the bench host.

#include "host/record/Json.h"
#include "host/text/Printable.h"
#include "platform/ComException.h"
#include "platform/Console.h"
#include "platform/DynamicLibrary.h"
#include "platform/Process.h"
#include "platform/Utf8.h"
#include "vant/Check.h"
#include "vant/Classes.h"
#include "vant/EngineRun.h"
#include "vant/Registration.h"
#include "vant/Run.h"
#include "vant/Test.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <cstdint>
#include <exception>
#include <functional>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

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
    return command.add_option("--module", module, "The module of the command classes")
        ->check(CheckNotEmpty)
        ->type_name("PATH")
        ->capture_default_str();
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
        ->type_name("FILE");
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
    check.add_option("FILE", options->files, "Procedures, engines or test files; - for the standard input")
        ->required()
        ->check(CheckNotEmpty);
    check
        .add_option("--engine", options->engine,
                    "Check against the engine in this file, not the procedures' own")
        ->check(CheckNotEmpty)
        ->type_name("FILE");
    check.add_flag("--json", options->json, "Print the messages as JSON");
    check.add_flag("--strict", options->strict, "Let warnings count as mistakes");
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
        ->type_name("FILE");
    test.add_option("--junit", options->junit, "Write the results to this file as JUnit XML")
        ->check(CheckNotEmpty)
        ->type_name("FILE");
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
    classes.add_option("NAME", options->name, "Only this class")->check(CheckNotEmpty);
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

ExitCode RunProgram(int argc, char** argv) {
    CLI::App app("Runs diagnostic procedures on a bench host.", "vant");
    app.set_version_flag("--version", "vant " VANT_VERSION);
    app.require_subcommand(0, 1);
    app.allow_windows_style_options(false);
    ExitCode result = ExitCode::Passed;
    AddRun(app, result);
    AddCheck(app, result);
    AddTest(app, result);
    AddEngine(app, result);
    AddClasses(app, result);
    AddRegistration(app, result, "register", "Register the module's classes with the system", Register);
    AddRegistration(app, result, "unregister", "Remove the registration", Unregister);
    AddCatalogue(app, result);

    std::vector<std::string> arguments = ProcessArguments(argc, argv);
    std::reverse(arguments.begin(), arguments.end()); // as the parser expects them
    try {
        app.parse(std::move(arguments));
        // Only now: an unknown subcommand is a better message than a missing one.
        if (app.get_subcommands().empty())
            throw CLI::RequiredError("A subcommand");
    } catch (const CLI::ParseError& stop) {
        // Help and version are reported this way too.
        if (app.exit(stop) != 0)
            return ExitCode::WrongInput;
        if (!std::cout.flush())
            throw Failure(ExitCode::Broken, "the text could not be written completely");
    }
    return result;
}

int Report(ExitCode code, const std::string& message) {
    std::cerr << host::Printable("vant: " + message) << '\n';
    return static_cast<int>(code);
}

int Main(int argc, char** argv) {
    try {
        SecureStandardStreams();
        PrepareConsole();
        return static_cast<int>(RunProgram(argc, argv));
    } catch (const Failure& failure) {
        return Report(failure.Code(), failure.what());
    } catch (const std::exception& failure) {
        return Report(ExitCode::Broken, failure.what());
    } catch (const CComException& failure) {
        return Report(ExitCode::Broken, "a platform call failed: " + host::ToText(failure.Code()));
    }
}

} // namespace

} // namespace vant::program

int main(int argc, char** argv) {
    return vant::program::Main(argc, argv);
}
