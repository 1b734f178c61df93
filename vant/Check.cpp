#include "vant/Check.h"

#include "host/procedure/InputFile.h"
#include "host/procedure/Loading.h"
#include "host/record/Json.h"
#include "host/text/Printable.h"

#include <fmt/format.h>
#include <iostream>
#include <map>
#include <set>
#include <utility>

namespace vant::program {

using namespace host;

namespace {

/// The messages about all files. Several procedures may use one file, about which everything is said once.
class Messages {
public:
    void Add(const LoadedFiles& files) {
        for (const LoadedFile& each : files.All()) {
            const auto [number, isNew] = m_numbers.emplace(each.name, m_files.size());
            if (isNew)
                m_files.push_back({each.name, {}});
            Add(each, m_files[number->second].found);
        }
    }

    std::size_t Errors() const { return m_errors; }
    std::size_t Warnings() const { return m_warnings; }

    std::string Print() const {
        std::string text;
        for (const File& file : m_files)
            text += file.found.Print(file.name);
        return text;
    }

    /// `given` are the files that are listed even without a message.
    Json ToJson(const std::vector<std::string>& given) const {
        const std::set<std::string> listed(given.begin(), given.end());
        Json files = Json::array();
        for (const File& file : m_files) {
            Json messages = Json::array();
            for (const Diagnostic& each : file.found.Sorted())
                messages.push_back(MessageToJson(file.name, each));
            if (!messages.empty() || listed.contains(file.name))
                files.push_back({{"file", file.name}, {"messages", std::move(messages)}});
        }
        return {{"files", std::move(files)}, {"errors", m_errors}, {"warnings", m_warnings}};
    }

private:
    struct File {
        std::string name;
        Diagnostics found;
    };

    void Add(const LoadedFile& file, Diagnostics& found) {
        for (const Diagnostic& each : file.found.Sorted()) {
            if (!m_said.insert(each.Text(file.name)).second)
                continue;
            if (each.severity == Severity::Error) {
                ++m_errors;
                found.Error(each.position, each.message);
            } else {
                ++m_warnings;
                found.Warning(each.position, each.message);
            }
        }
    }

    static Json MessageToJson(const std::string& file, const Diagnostic& message) {
        Json json;
        json["file"] = message.position.file ? *message.position.file : file;
        json["line"] = message.position.line;
        json["column"] = message.position.column;
        json["severity"] = message.severity == Severity::Error ? "error" : "warning";
        json["message"] = message.message;
        return json;
    }

    std::vector<File> m_files;
    std::map<std::string, std::size_t> m_numbers; ///< Of files in `m_files`, by name.
    std::set<std::string> m_said;
    std::size_t m_errors = 0;
    std::size_t m_warnings = 0;
};

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
        for (const LoadedFiles& files : CheckFiles(options.files, options.engine))
            messages.Add(files);
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
