// The command-line program of the bench host.

#include "host/record/Json.h"
#include "host/text/Printable.h"
#include "platform/ComException.h"
#include "platform/Console.h"
#include "platform/Process.h"
#include "vant/CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

namespace vant::program {

namespace {

ExitCode RunProgram(int argc, char** argv) {
    CLI::App app;
    ExitCode result = ExitCode::Passed;
    DeclareCommandLine(app, result);

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
