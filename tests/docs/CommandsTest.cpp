// docs/commands.md against the command classes: their property tables, and what the built module accepts.

#include "framework/interfaces/VantCommand.h"
#include "host/procedure/ProcedureReader.h"
#include "host/runner/CommandCheck.h"
#include "host/runner/Module.h"
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

const Module& BuiltModule() {
    static const Module module(ProgramFolder() / LibraryFileName("VantCommands"));
    return module;
}

/// Property, alternative, required: what the code says, in the words of the document.
std::vector<TableRow> StatedRows(PropertyTable table) {
    std::vector<TableRow> rows;
    for (const PropertyRow& row : table)
        rows.push_back({ToUtf8(row.name), row.alternativeName ? ToUtf8(row.alternativeName) : "none",
                        row.required ? "yes" : "no"});
    return rows;
}

std::vector<TableRow> DocumentedRows(const Section& section) {
    std::vector<TableRow> rows;
    for (const TableRow& row : section.Table("property")) {
        EXPECT_EQ(row.size(), 4U) << section.title;
        EXPECT_FALSE(row.back().empty()) << "no meaning: " << section.title << ", " << row.front();
        rows.push_back({Unquoted(row.at(0)), Unquoted(row.at(1)), row.at(2)});
    }
    return rows;
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

TEST(CommandsDocument, PropertyTables_AreThoseOfTheClasses) {
    const auto documented = DocumentedClasses();
    for (const auto& [name, table] : PropertyTables())
        EXPECT_EQ(DocumentedRows(documented.at(name).section), StatedRows(table)) << name;
}

TEST(CommandsDocument, PersistentMark_StandsAtTheClassesThatAnswerTheInterface) {
    for (const auto& [name, each] : DocumentedClasses()) {
        CComPtr<IVantCommand> command;
        ASSERT_EQ(BuiltModule().Create(name, command), S_OK) << name;
        CComPtr<IVantPersistentCommand> persistent;
        EXPECT_EQ(SUCCEEDED(command.QueryInterface(&persistent)), each.isPersistent) << name;
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
