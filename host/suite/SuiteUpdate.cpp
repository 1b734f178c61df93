#include "host/suite/SuiteUpdate.h"

#include "host/procedure/InputFile.h"
#include "host/suite/Discovery.h"
#include "host/suite/ExpectationUpdate.h"
#include "host/suite/TestFileReader.h"
#include "host/text/Printable.h"
#include "platform/Utf8.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <utility>

namespace vant::host {

namespace {

/// The file is whole at every moment: its new text takes its place in one step.
void Replace(const std::filesystem::path& given, const std::string& text) {
    const std::filesystem::path file = std::filesystem::canonical(given); // A link stays a link.
    std::filesystem::path replacement = file;
    replacement += ".new";
    errno = 0;
    std::ofstream out(replacement, std::ios::binary | std::ios::trunc);
    out << text;
    out.close();
    if (!out) {
        const int reason = errno ? errno : EIO;
        std::error_code ignored;
        std::filesystem::remove(replacement, ignored);
        throw std::system_error(reason, std::generic_category());
    }
    std::filesystem::permissions(replacement, std::filesystem::status(file).permissions());
    std::filesystem::rename(replacement, file);
}

} // namespace

SuiteUpdate::File& SuiteUpdate::Get(const std::string& name) {
    const auto found = m_files.find(name);
    return found != m_files.end() ? found->second
                                  : m_files.emplace(name, File{ReadFile(PathFromUtf8(name))}).first->second;
}

TestCase SuiteUpdate::Update(const TestCase& tested, const Json& result) {
    const NewExpectation needed = NeededFor(tested, result);
    if (needed.IsEmpty() || !IsTestFile(tested.file))
        return tested;
    File& file = Get(tested.file);
    try {
        std::string text = UpdateExpectation(file.text, tested, needed);
        Diagnostics ignored;
        const auto cases = ReadTestFile(text, tested.file, ignored);
        file.text = std::move(text);
        ++file.changes;
        return *std::find_if(cases.begin(), cases.end(),
                             [&tested](const TestCase& each) { return each.name == tested.name; });
    } catch (const UpdateError& failure) {
        file.refusals[tested.position] =
            (tested.isSwept ? "this sweep" : Quoted(tested.name)) + " is not updated: " + failure.what();
        return tested;
    }
}

std::string SuiteUpdate::Refusals() const {
    std::string text;
    for (const auto& [name, file] : m_files) {
        for (const auto& [position, message] : file.refusals)
            text += Diagnostic{position, Severity::Warning, message}.Text(name) + '\n';
    }
    return text;
}

std::map<std::string, std::size_t> SuiteUpdate::Write() const {
    std::map<std::string, std::size_t> changes;
    for (const auto& [name, file] : m_files) {
        if (file.changes == 0)
            continue;
        try {
            Replace(PathFromUtf8(name), file.text);
        } catch (const std::system_error& failure) {
            throw std::system_error(failure.code(), "cannot write " + name);
        }
        changes.emplace(name, file.changes);
    }
    return changes;
}

} // namespace vant::host
