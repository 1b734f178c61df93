// docs/procedures.md, docs/engines.md and README.md against the readers of the two file formats and the
// program's output.

#include "host/procedure/EngineReader.h"
#include "host/procedure/ProcedureReader.h"
#include "host/record/Codes.h"
#include "host/record/Json.h"
#include "host/record/Vocabulary.h"
#include "host/runner/CommandCheck.h"
#include "host/runner/LoadedModule.h"
#include "host/suite/SuiteToJson.h"
#include "host/suite/TestFileReader.h"
#include "platform/Process.h"
#include "tests/docs/Markdown.h"

#include <algorithm>
#include <filesystem>
#include <fmt/format.h>
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

using Words = std::set<std::string>;

/// The first group of every match.
Words Matches(const std::string& text, const std::regex& expression) {
    Words found;
    for (std::sregex_iterator each(text.begin(), text.end(), expression), end; each != end; ++each)
        found.insert(each->str(1));
    return found;
}

/// Every key that a reader's source knows: it lists them to refuse all others.
Words KnownKeys(const std::string& source) {
    const std::string text = ReadProjectFile(source);
    const std::regex lists(R"(CheckKeys\([^{;]*\{([^}]*)\}\))");
    Words keys;
    for (std::sregex_iterator list(text.begin(), text.end(), lists), end; list != end; ++list)
        keys.merge(Matches(list->str(1), std::regex(R"re("(\w+)")re")));
    EXPECT_FALSE(keys.empty()) << source;
    return keys;
}

/// Every word in backticks in the tables of a document.
Words WordsInTables(const std::string& document) {
    Words words;
    for (const Section& section : ReadSections(document)) {
        for (const std::string& line : section.lines) {
            if (!line.starts_with('|'))
                continue;
            for (const std::string& code : Matches(line, std::regex("`([^`]*)`")))
                words.merge(Matches(code, std::regex(R"((\w+))")));
        }
    }
    return words;
}

Words Missing(const Words& wanted, const Words& given) {
    Words missing;
    std::set_difference(wanted.begin(), wanted.end(), given.begin(), given.end(),
                        std::inserter(missing, missing.end()));
    return missing;
}

const Section& SectionOf(const std::vector<Section>& sections, const std::string& title) {
    return *std::find_if(sections.begin(), sections.end(),
                         [&](const Section& each) { return each.title == title; });
}

std::string TomlOf(const std::string& document, const std::string& section) {
    return SectionOf(ReadSections(document), section).Code("toml").at(0);
}

std::string TomlOfTheFile(const std::string& document) {
    return TomlOf(document, "The file");
}

/// The first column of the tables with that heading in the whole document.
Words FirstColumn(const std::string& document, std::string_view heading) {
    Words cells;
    for (const Section& section : ReadSections(document)) {
        for (const TableRow& row : section.Table(heading))
            cells.insert(Unquoted(row.at(0)));
    }
    return cells;
}

/// The words in backticks in a cell, in their order.
std::vector<std::string> QuotedWords(const std::string& cell) {
    const std::regex quoted("`(\\w+)`");
    std::vector<std::string> words;
    for (std::sregex_iterator each(cell.begin(), cell.end(), quoted), end; each != end; ++each)
        words.push_back(each->str(1));
    return words;
}

std::vector<std::string> ArgumentsOf(const RecordKind& kind) {
    std::vector<std::string> names;
    for (const char* const name : kind.arguments) {
        if (name)
            names.push_back(name);
    }
    return names;
}

std::string Signature(const std::string& service, const std::string& operation,
                      const std::vector<std::string>& arguments) {
    return fmt::format("{}.{}({})", service, operation, fmt::join(arguments, ", "));
}

void ExpectNoMistake(const Diagnostics& found) {
    for (const Diagnostic& each : found.Sorted())
        ADD_FAILURE() << each.Text("the example");
}

TEST(ProceduresDocument, Tables_HoldEveryKey) {
    const Words described = WordsInTables("docs/procedures.md");
    for (const char* const source :
         {"host/procedure/ProcedureReader.cpp", "host/procedure/ConditionReader.cpp"})
        EXPECT_EQ(Missing(KnownKeys(source), described), Words{}) << source;
}

TEST(EnginesDocument, Tables_HoldEveryKey) {
    const Words described = WordsInTables("docs/engines.md");
    for (const char* const source : {"host/procedure/EngineReader.cpp", "host/procedure/BehaviourReader.cpp",
                                     "host/procedure/FaultReader.cpp"})
        EXPECT_EQ(Missing(KnownKeys(source), described), Words{}) << source;
}

TEST(TestingDocument, Tables_HoldEveryKey) {
    const Words described = WordsInTables("docs/testing.md");
    for (const char* const source : {"host/suite/TestFileReader.cpp", "host/suite/ExpectationReader.cpp",
                                     "host/suite/FaultExcuse.cpp", "host/suite/SweepReader.cpp"})
        EXPECT_EQ(Missing(KnownKeys(source), described), Words{}) << source;
}

TEST(TestingDocument, Example_IsAccepted) {
    Diagnostics found;
    const auto cases = ReadTestFile(TomlOf("docs/testing.md", "The test file"), "docs/t.test.toml", found);
    ExpectNoMistake(found);
    EXPECT_EQ(cases.size(), 15U);
}

TEST(TestingDocument, Results_AreDescribedKeyByKey) {
    const Json results = SuiteToJson({TestCase()}, {CaseOutcome()});
    Words keys = FirstColumn("docs/testing.md", "key of the results");
    for (const auto& [key, value] : results.items())
        EXPECT_EQ(keys.erase(key), 1U) << key;
    EXPECT_EQ(keys, Words{});
    const Words described = WordsInTables("docs/testing.md");
    for (const auto& [key, value] : results["cases"][0].items())
        EXPECT_TRUE(described.contains(key)) << key;
}

TEST(TestingDocument, ExitCodes_AreThoseOfTheProgramWithoutTheOneOfARun) {
    Words declared = Matches(ReadProjectFile("vant/ExitCode.h"), std::regex(R"( = (\d+)[,} ])"));
    declared.erase("4");
    EXPECT_EQ(FirstColumn("docs/testing.md", "exit code"), declared);
}

TEST(ProceduresDocument, Example_IsAccepted) {
    Diagnostics found;
    const Procedure procedure = ReadProcedure(TomlOfTheFile("docs/procedures.md"), found);
    CheckCommands(procedure, LoadedModule(ProgramFolder() / LibraryFileName("VantCommands")), found);
    ExpectNoMistake(found);
    EXPECT_FALSE(procedure.steps.empty());
}

TEST(EnginesDocument, Example_IsAccepted) {
    Diagnostics found;
    const EngineDescription engine = ReadEngine(TomlOfTheFile("docs/engines.md"), found);
    ExpectNoMistake(found);
    EXPECT_FALSE(engine.parameters.empty());
}

TEST(ProceduresDocument, Journal_ListsEveryKindOfRecordWithItsArguments) {
    const std::vector<Section> sections = ReadSections("docs/procedures.md");
    const Section& journal = SectionOf(sections, "The journal");
    Words described;
    for (const TableRow& row : journal.Table("event of \"Runner\""))
        described.insert(Signature(service::Runner, Unquoted(row.at(0)), QuotedWords(row.at(1))));
    for (const TableRow& row : journal.Table("service"))
        described.insert(Signature(Unquoted(row.at(0)), Unquoted(row.at(1)), QuotedWords(row.at(2))));
    Words known;
    for (const RecordKind& kind : recordKinds)
        known.insert(Signature(kind.service, kind.operation, ArgumentsOf(kind)));
    EXPECT_EQ(described, known);
}

TEST(ProceduresDocument, ResultCodes_AreThoseOfReports) {
    const std::vector<Section> sections = ReadSections("docs/procedures.md");
    Words described;
    for (const TableRow& row : SectionOf(sections, "Result codes").Table("code"))
        described.insert(row.at(0) + " | " + row.at(1) + " | " + row.at(2));
    Words known;
    for (const auto& [code, name, meaning] : CodeMeanings())
        known.insert(std::string(name) + " | " + ToText(code) + " | " + meaning);
    EXPECT_EQ(described, known);
}

TEST(ProceduresDocument, ExitCodes_AreThoseOfTheProgram) {
    const Words declared = Matches(ReadProjectFile("vant/ExitCode.h"), std::regex(R"( = (\d+)[,} ])"));
    EXPECT_EQ(FirstColumn("docs/procedures.md", "exit code"), declared);
}

TEST(Readme, ReportOfTheExample_IsWhatTheProgramPrints) {
    std::istringstream lines(ReadProjectFile("tests/procedures/expected/battery_check.out"));
    std::string indented;
    for (std::string line; std::getline(lines, line);)
        indented += (line.empty() ? "" : "    " + line) + '\n';
    EXPECT_NE(ReadProjectFile("README.md").find("\n\n" + indented + '\n'), std::string::npos);
}

} // namespace
} // namespace vant::test
