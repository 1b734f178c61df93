// host/record/Vocabulary.h against the journals of the example procedures and against the sources.

#include "host/record/Vocabulary.h"

#include "host/record/Json.h"
#include "tests/docs/Markdown.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <iterator>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace vant::test {

using namespace host;
namespace {

/// The files below a folder, except those below `excluded`, whose names end in one of the extensions.
std::vector<std::string> FilesBelow(const std::string& folder, const std::set<std::string>& extensions,
                                    const std::string& excluded = {}) {
    std::vector<std::string> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        const std::string file = entry.path().generic_string();
        if (extensions.contains(entry.path().extension().string()) &&
            (excluded.empty() || !file.starts_with(excluded)))
            files.push_back(file);
    }
    return files;
}

/// The row of recordKinds for a service and its operation; the end if there is none.
const RecordKind* FindKind(const std::string& service, const std::string& operation) {
    return std::find_if(std::begin(recordKinds), std::end(recordKinds), [&](const RecordKind& kind) {
        return kind.service == service && kind.operation == operation;
    });
}

/// Whether these arguments, in their order, are among those of the kind.
bool HasArguments(const RecordKind& kind, const Json& arguments) {
    auto next = kind.arguments.begin();
    for (const auto& [name, value] : arguments.items()) {
        next = std::find_if(next, kind.arguments.end(),
                            [&name = name](const char* each) { return each && each == name; });
        if (next == kind.arguments.end())
            return false;
        ++next;
    }
    return true;
}

TEST(Vocabulary, ExampleJournals_ConsistOfItsKindsOfRecords) {
    std::set<const RecordKind*> seen;
    std::size_t records = 0;
    for (const std::string& file : FilesBelow("tests/procedures/expected", {".journal"})) {
        std::istringstream lines(ReadProjectFile(file));
        for (std::string line; std::getline(lines, line); ++records) {
            const Json record = Json::parse(line);
            const RecordKind* const kind = FindKind(record["service"], record["operation"]);
            ASSERT_NE(kind, std::end(recordKinds)) << file << ": " << line;
            EXPECT_TRUE(HasArguments(*kind, record["arguments"])) << file << ": " << line;
            seen.insert(kind);
        }
    }
    EXPECT_GT(records, 1000U);
    // No command calls these three.
    for (const char* const each :
         {operation::UnregisterCallback, operation::Operation11, operation::Operation12})
        seen.insert(FindKind(service::ThreadService, each));
    for (const RecordKind& kind : recordKinds)
        EXPECT_TRUE(seen.contains(&kind)) << kind.service << ' ' << kind.operation;
}

TEST(Vocabulary, Kinds_AreListedOnce) {
    for (const RecordKind& kind : recordKinds)
        EXPECT_EQ(FindKind(kind.service, kind.operation), &kind) << kind.service << ' ' << kind.operation;
}

TEST(Vocabulary, Sources_SpellNoNameOfTheirOwn) {
    std::string names;
    for (const RecordKind& kind : recordKinds)
        names.append(names.empty() ? "" : "|").append(kind.operation);
    const std::regex operationLiteral("\"(" + names + ")\"");
    const std::regex argumentLiteral(R"re(\b(Find|Text|Add|Perform|RecordEvent)\(\s*"\w+")re");
    std::vector<std::string> files = FilesBelow("host", {".h", ".cpp"}, "host/procedure");
    for (const std::string& file : FilesBelow("vant", {".h", ".cpp"}))
        files.push_back(file);
    EXPECT_GT(files.size(), 50U);
    for (const std::string& file : files) {
        if (file == "host/record/Vocabulary.h")
            continue;
        const std::string text = ReadProjectFile(file);
        std::smatch found;
        EXPECT_FALSE(std::regex_search(text, found, operationLiteral)) << file << ": " << found.str();
        EXPECT_FALSE(std::regex_search(text, found, argumentLiteral)) << file << ": " << found.str();
    }
}

} // namespace
} // namespace vant::test
