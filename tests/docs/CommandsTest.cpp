// The table of properties against the classes' own tables; docs/commands.md against both, and against what
// the built module accepts.

#include "framework/interfaces/ClassProperties.h"
#include "framework/interfaces/VantCommand.h"
#include "host/procedure/ClassReport.h"
#include "host/procedure/ClassTraits.h"
#include "host/procedure/ProcedureReader.h"
#include "host/procedure/PropertyCheck.h"
#include "host/runner/CommandCheck.h"
#include "host/runner/LoadedModule.h"
#include "platform/Process.h"
#include "platform/Utf8.h"
#include "tests/docs/Markdown.h"
#include "tests/docs/PropertyTables.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

namespace vant::test {

using namespace host;
namespace {

constexpr std::string_view persistentMark = " (persistent)";

struct DocumentedClass {
    bool isPersistent = false;
    Section section;
};

/// By the class's name.
std::map<std::string, DocumentedClass> DocumentedClasses() {
    std::map<std::string, DocumentedClass> classes;
    for (const Section& section : ReadSections("docs/commands.md")) {
        if (section.level != 3)
            continue;
        const bool isPersistent = section.title.ends_with(persistentMark);
        const std::size_t length = section.title.size() - (isPersistent ? persistentMark.size() : 0);
        const std::string name = section.title.substr(0, length);
        EXPECT_TRUE(classes.emplace(name, DocumentedClass{isPersistent, section}).second) << name;
    }
    return classes;
}

const LoadedModule& BuiltModule() {
    static const LoadedModule module(ProgramFolder() / LibraryFileName("VantCommands"));
    return module;
}

/// Property, alternative, required: what a class itself declares. An alternative has a row of its own.
std::vector<TableRow> DeclaredRows(PropertyTable table) {
    std::vector<TableRow> rows;
    for (const PropertyRow& row : table) {
        const std::string name = ToUtf8(row.name);
        const std::string alternative = ToUtf8(row.alternativeName);
        const std::string required = row.required ? "yes" : "no";
        rows.push_back({name, alternative, required});
        if (row.alternativeName)
            rows.push_back({alternative, name, required});
    }
    return rows;
}

/// The same as the table of properties states it.
std::vector<TableRow> StatedRows(const std::string& className) {
    std::vector<TableRow> rows;
    for (const ClassProperty& each : PropertiesOfClass(className))
        rows.push_back({std::string(each.name), std::string(each.alternative), each.required ? "yes" : "no"});
    return rows;
}

/// The rows of the document's table as the table of properties demands them, without backticks.
std::vector<TableRow> DemandedRows(const std::string& className) {
    std::vector<TableRow> rows;
    for (const ClassProperty& each : PropertiesOfClass(className))
        rows.push_back({std::string(each.name),
                        each.alternative.empty() ? "none" : std::string(each.alternative),
                        each.required ? "yes" : "no", DescribeKind(each), std::string(each.meaning)});
    return rows;
}

std::vector<TableRow> DocumentedRows(const Section& section) {
    std::vector<TableRow> rows = section.Table("property");
    for (TableRow& row : rows) {
        for (std::string& cell : row)
            std::erase(cell, '`');
    }
    return rows;
}

TEST(PropertyTable, Rows_AreThoseOfTheClasses) {
    for (const auto& [name, table] : PropertyTables())
        EXPECT_EQ(StatedRows(name), DeclaredRows(table)) << name;
}

TEST(CommandsDocument, Classes_AreThoseOfTheModule) {
    std::vector<std::string> documented;
    for (const auto& [name, each] : DocumentedClasses())
        documented.push_back(name);
    std::vector<std::string> built = ClassNames();
    std::sort(built.begin(), built.end());
    EXPECT_EQ(built.size(), 21U);
    EXPECT_EQ(documented, built);
}

TEST(CommandsDocument, Overview_ListsEveryClassOnce) {
    std::vector<std::string> listed;
    for (const Section& section : ReadSections("docs/commands.md")) {
        for (const TableRow& row : section.Table("group")) {
            std::string names = row.at(1) + ", ";
            for (std::size_t comma; (comma = names.find(", ")) != std::string::npos;
                 names.erase(0, comma + 2))
                listed.push_back(names.substr(0, comma));
        }
    }
    std::sort(listed.begin(), listed.end());
    std::vector<std::string> built = ClassNames();
    std::sort(built.begin(), built.end());
    EXPECT_EQ(listed, built);
}

TEST(CommandsDocument, PropertyTables_AreThoseOfTheTableOfProperties) {
    for (const auto& [name, each] : DocumentedClasses())
        EXPECT_EQ(DocumentedRows(each.section), DemandedRows(name)) << name;
}

TEST(CommandsDocument, PersistentMark_StandsAtTheClassesThatReturnTheInterface) {
    for (const auto& [name, each] : DocumentedClasses()) {
        CComPtr<IVantCommand> command;
        ASSERT_EQ(BuiltModule().Create(name, command), S_OK) << name;
        CComPtr<IVantPersistentCommand> persistent;
        EXPECT_EQ(SUCCEEDED(command.QueryInterface(&persistent)), each.isPersistent) << name;
    }
}

TEST(CommandsDocument, TraitsForChecks_AreThoseOfTheClasses) {
    const auto classes = DocumentedClasses();
    ASSERT_EQ(AllClassTraits().size(), classes.size());
    for (const auto& [name, each] : classes) {
        const ClassTraits& traits = TraitsOf(name);
        EXPECT_EQ(traits.className, name);
        EXPECT_EQ(traits.runsOn, each.isPersistent) << name;
        // The engine speed stands in the text before both throttle adjusters.
        const auto isNamed = [&section = each.section](std::string_view id) {
            return id.empty() || id == "101000" ||
                   std::any_of(section.lines.begin(), section.lines.end(),
                               [id](const std::string& line) { return line.find(id) != std::string::npos; });
        };
        for (const std::string_view id : traits.parameters)
            EXPECT_TRUE(isNamed(id)) << name << " does not name parameter " << id;
    }
}

TEST(CommandsDocument, Examples_AreAcceptedByTheModule) {
    for (const auto& [name, each] : DocumentedClasses()) {
        const auto examples = each.section.Code("toml");
        ASSERT_EQ(examples.size(), 1U) << name;
        Diagnostics found;
        const Procedure procedure = ReadProcedure(
            "name = 'Example'\nstart = 'end'\n" + examples.front() + "[steps.end]\nend = 'passed'\n", found);
        CheckCommands(procedure, BuiltModule(), found);
        for (const Diagnostic& diagnostic : found.Sorted()) {
            if (diagnostic.severity == Severity::Error)
                ADD_FAILURE() << diagnostic.Text("the example of " + name);
        }
        EXPECT_TRUE(
            std::any_of(procedure.commands.begin(), procedure.commands.end(),
                        [&name = name](const auto& row) { return row.second.className.text == name; }))
            << "the example of " << name << " has no command of the class";
    }
}

} // namespace
} // namespace vant::test
