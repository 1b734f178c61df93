// The command-line program of the bench host.

#include "platform/ComException.h"
#include "platform/Console.h"
#include "platform/DynamicLibrary.h"
#include "platform/Process.h"
#include "platform/Utf8.h"
#include "vant/EngineRun.h"
#include "vant/Registration.h"
#include "vant/Run.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

namespace {

/// For file names: an empty one, as a shell makes of a variable that is not set, is not the same as none.
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

int RunProgram(int argc, char** argv) {
    vant::SecureStandardStreams();
    vant::PrepareConsole();

    vant::program::RunOptions options;
    options.module = vant::PathToUtf8(vant::ProgramFolder() / vant::LibraryFileName("VantCommands"));

    CLI::App app("Runs diagnostic procedures on a bench host.", "vant");
    app.set_version_flag("--version", "vant " VANT_VERSION);
    // File names may begin with a slash on every system.
    app.allow_windows_style_options(false);

    CLI::App* const run = app.add_subcommand("run", "Run a procedure file");
    run->allow_windows_style_options(false);
    run->add_option("FILE", options.procedure, "The procedure, a TOML file")
        ->required()
        ->check(CheckNotEmpty);
    run->add_option("--engine", options.engine, "Run on the engine in this file, not on the procedure's own")
        ->check(CheckNotEmpty)
        ->type_name("FILE");
    run->add_option("--journal", options.journal, "Write every host call to this file, as lines of JSON")
        ->check(CheckNotEmpty)
        ->type_name("FILE");
    run->add_option("--module", options.module, "The module of the command classes")
        ->check(CheckNotEmpty)
        ->type_name("PATH")
        ->capture_default_str();
    run->add_flag("--json", options.json, "Print the result as JSON");
    run->add_flag("--yes", options.answersMessages, "Close every message without waiting for Enter");
    run->footer(
        "Exit codes: 0 passed, 1 failed, 2 wrong usage or file, 3 module or host failure, 130 aborted.");

    run->add_flag("--registered", options.registered,
                  "Create the commands by their registered ProgIDs instead of loading a module")
        ->excludes("--module");

    vant::program::EngineRunOptions engineRun;
    CLI::App* const engine =
        app.add_subcommand("engine", "Let an engine run without a procedure and print its parameters");
    engine->allow_windows_style_options(false);
    engine->add_option("FILE", engineRun.file, "The engine, or a procedure that has one; a TOML file")
        ->required()
        ->check(CheckNotEmpty);
    engine->add_option("--for", engineRun.duration, "How long: a number with ms, s, min or h")
        ->type_name("DURATION")
        ->capture_default_str();
    engine->add_option("--every", engineRun.every, "The time from one row to the next")
        ->type_name("DURATION")
        ->capture_default_str();
    engine->add_flag("--csv", engineRun.csv, "Print comma-separated values instead of a table");
    engine->add_option("--seed", engineRun.seed, "The seed of the noise, in place of the engine's")
        ->check(CheckSeed)
        ->type_name("NUMBER");
    engine->add_option("--set", engineRun.writes, "Write a parameter at a time; can be given repeatedly")
        ->type_name("ID=VALUE@TIME")
        ->allow_extra_args(false);
    engine->footer("Exit codes: 0 done, 2 wrong usage or file, 3 the output could not be written.");

    CLI::Option* const virtualTime =
        run->add_flag("--virtual", options.virtualTime, "Let virtual time pass instead of waiting");
    run->add_option("--speed", options.speed, "Let time pass so many times as fast")
        ->type_name("N")
        ->excludes(virtualTime);

    vant::program::RegistrationOptions registration;
    registration.module = options.module;
    const auto addRegistration = [&](const char* name, const char* purpose) {
        CLI::App* const command = app.add_subcommand(name, purpose);
        command->allow_windows_style_options(false);
        command->add_option("--module", registration.module, "The module of the command classes")
            ->check(CheckNotEmpty)
            ->type_name("PATH")
            ->capture_default_str();
        command->add_flag("--user", registration.userOnly, "For the current user only");
        command->footer("Exit codes: 0 done, 2 wrong usage, 3 the module could not do it.");
        return command;
    };
    CLI::App* const registerModule =
        addRegistration("register", "Register the module's classes with the system");
    CLI::App* const unregisterModule = addRegistration("unregister", "Remove the registration");
    CLI::App* const catalogue =
        app.add_subcommand("catalogue", "List the registered classes and their modules");
    catalogue->footer("Exit codes: 0 done, 2 wrong usage, 3 the list could not be written.");

    std::vector<std::string> arguments = vant::ProcessArguments(argc, argv);
    std::reverse(arguments.begin(), arguments.end()); // as the parser expects them
    try {
        app.parse(std::move(arguments));
        if (app.get_subcommands().empty())
            throw CLI::RequiredError("A subcommand");
    } catch (const CLI::ParseError& stop) {
        // Help and version are reported this way too.
        return app.exit(stop) == 0 ? 0 : static_cast<int>(vant::program::ExitCode::WrongInput);
    }
    if (*engine)
        return static_cast<int>(vant::program::RunEngine(engineRun));
    if (*registerModule)
        return static_cast<int>(vant::program::Register(registration));
    if (*unregisterModule)
        return static_cast<int>(vant::program::Unregister(registration));
    if (*catalogue)
        return static_cast<int>(vant::program::PrintCatalogue());
    return static_cast<int>(vant::program::Run(options));
}

} // namespace

int main(int argc, char** argv) {
    try {
        return RunProgram(argc, argv);
    } catch (const vant::CComException& failure) {
        std::fprintf(stderr, "vant: failed with 0x%08X\n", static_cast<unsigned>(failure.Code()));
        return static_cast<int>(vant::program::ExitCode::Broken);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "vant: %s\n", failure.what());
        return static_cast<int>(vant::program::ExitCode::Broken);
    }
}
