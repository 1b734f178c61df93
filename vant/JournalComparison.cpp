#include "vant/JournalComparison.h"

#include "host/record/JournalReader.h"
#include "host/record/Json.h"
#include "host/text/Duration.h"
#include "platform/Utf8.h"

#include <cerrno>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <iostream>
#include <system_error>

namespace vant::program {

using namespace host;

namespace {

std::string Print(const std::vector<JournalDifference>& differences) {
    std::string text;
    const std::string* place = nullptr;
    for (const JournalDifference& each : differences) {
        if (!place || *place != each.place)
            text += each.place + '\n';
        place = &each.place;
        text += "  " + each.text + '\n';
    }
    const std::size_t count = differences.size();
    return text +
           (count == 0 ? "no differences\n" : fmt::format("{} difference{}\n", count, count == 1 ? "" : "s"));
}

Json ToJson(const std::vector<JournalDifference>& differences) {
    Json list = Json::array();
    for (const JournalDifference& each : differences)
        list.push_back({{"place", each.place}, {"text", each.text}});
    return {{"format", 1}, {"differences", std::move(list)}};
}

} // namespace

std::vector<Record> ReadJournalFile(const std::string& file) {
    std::error_code unknown;
    const auto type = std::filesystem::status(PathFromUtf8(file), unknown).type();
    if (type == std::filesystem::file_type::directory)
        throw Failure(ExitCode::WrongInput, file + ": this is a folder, not a journal");
    if (type == std::filesystem::file_type::character || type == std::filesystem::file_type::block)
        throw Failure(ExitCode::WrongInput, file + ": this is a device, not a journal");
    std::ifstream in(PathFromUtf8(file), std::ios::binary);
    if (!in)
        throw Failure(ExitCode::WrongInput, file + ": " + std::generic_category().message(errno));
    try {
        return ReadJournal(in);
    } catch (const JournalError& failure) {
        throw Failure(ExitCode::WrongInput, file + ": " + failure.what());
    }
}

DiffTolerance ToleranceOf(const std::string& time, double value) {
    const auto parsed = ParseDuration(time);
    if (!parsed)
        throw Failure(ExitCode::WrongInput,
                      "--time needs a duration such as 0ms, 100ms or 2s, not '" + time + "'");
    return {.time = *parsed, .value = value};
}

ExitCode PrintDifferences(const std::vector<JournalDifference>& differences, bool asJson) {
    std::cout << (asJson ? ToJson(differences).dump(2) + '\n' : Print(differences));
    if (!std::cout.flush())
        throw Failure(ExitCode::Broken, "the differences could not be written completely");
    return differences.empty() ? ExitCode::Passed : ExitCode::Failed;
}

} // namespace vant::program
