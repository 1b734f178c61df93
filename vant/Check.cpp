#include "vant/Check.h"

#include "host/procedure/InputFile.h"
#include "host/procedure/Loading.h"
#include "host/record/Json.h"
#include "host/suite/Discovery.h"
#include "host/suite/Suite.h"
#include "vant/Messages.h"

#include <fmt/format.h>
#include <iostream>

namespace vant::program {

using namespace host;

namespace {

std::string Count(std::size_t number, const char* what) {
    return fmt::format("{} {}{}", number, what, number == 1 ? "" : "s");
}

std::string Summary(std::size_t files, const Messages& messages) {
    std::string found;
    if (messages.Errors() > 0)
        found += ", " + Count(messages.Errors(), "error");
    if (messages.Warnings() > 0)
        found += ", " + Count(messages.Warnings(), "warning");
    return Count(files, "file") + (found.empty() ? ", no mistakes" : found);
}

} // namespace

ExitCode Check(const CheckOptions& options) {
    Messages messages;
    try {
        std::vector<std::string> others = options.files;
        std::erase_if(others, IsTestFile);
        for (const LoadedFiles& files : CheckFiles(others, options.engine))
            messages.Add(files);
        for (const std::string& each : options.files) {
            if (!IsTestFile(each))
                continue;
            for (const LoadedFiles& files : CheckTestFile(each))
                messages.Add(files);
        }
    } catch (const InputError& failure) {
        throw Failure(ExitCode::WrongInput, failure.what());
    }
    if (options.json) {
        std::cout << messages.ToJson(options.files).dump(2) << '\n';
    } else {
        std::cerr << messages.Print();
        std::cout << Summary(options.files.size(), messages) << '\n';
    }
    if (!std::cout.flush())
        throw Failure(ExitCode::Broken, "the messages could not be written completely");
    const bool isRight = messages.Errors() == 0 && (!options.strict || messages.Warnings() == 0);
    return isRight ? ExitCode::Passed : ExitCode::WrongInput;
}

} // namespace vant::program
