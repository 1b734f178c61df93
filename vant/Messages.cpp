#include "vant/Messages.h"

#include <utility>

namespace vant::program {

using namespace host;

namespace {

Json MessageToJson(const std::string& file, const Diagnostic& message) {
    Json json;
    json["file"] = message.position.file ? *message.position.file : file;
    json["line"] = message.position.line;
    json["column"] = message.position.column;
    json["severity"] = message.severity == Severity::Error ? "error" : "warning";
    json["message"] = message.message;
    return json;
}

} // namespace

void Messages::Add(const LoadedFiles& files) {
    for (const LoadedFile& each : files.All()) {
        const auto [number, isNew] = m_numbers.emplace(each.name, m_files.size());
        if (isNew)
            m_files.push_back({each.name, {}});
        Add(each, m_files[number->second].found);
    }
}

void Messages::Add(const LoadedFile& file, Diagnostics& found) {
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

std::string Messages::Print() const {
    std::string text;
    for (const File& file : m_files)
        text += file.found.Print(file.name);
    return text;
}

Json Messages::ToJson(const std::vector<std::string>& given) const {
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

} // namespace vant::program
