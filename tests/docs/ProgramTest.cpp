// The command line against the documents, and against the texts that the program makes of it.

#include "host/procedure/ClassReport.h"
#include "tests/docs/Markdown.h"
#include "vant/CommandLine.h"
#include "vant/Completion.h"
#include "vant/Manual.h"
#include "vant/ProgramText.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace vant::test {

using namespace program;

namespace {

/// A command with the names of its options, with or without those that are hidden from users.
using Options = std::map<std::string, std::set<std::string>>;

void Collect(const CLI::App& command, const std::string& name, bool hidden, Options& options) {
    std::set<std::string>& own = options[name];
    for (const CLI::Option* const each : command.get_options()) {
        if (!hidden && each->get_group().empty())
            continue;
        for (const std::string& option : each->get_lnames())
            own.insert("--" + option);
    }
    for (const CLI::App* const each : command.get_subcommands({}))
        Collect(*each, name + " " + each->get_name(), hidden, options);
}

/// The command line of the program. The parser's object cannot be copied or moved.
struct CommandLine {
    CommandLine() { DeclareCommandLine(app, result); }

    Options Names(bool hidden) const {
        Options options;
        Collect(app, "vant", hidden, options);
        return options;
    }

    CLI::App app;
    ExitCode result = ExitCode::Passed;
};

bool Contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

/// The first group of every match, in order.
std::vector<std::string> Matches(const std::string& text, const std::regex& expression) {
    std::vector<std::string> found;
    for (std::sregex_iterator each(text.begin(), text.end(), expression), end; each != end; ++each)
        found.push_back(each->str(1));
    return found;
}

/// A page without its fonts and escapes.
std::string Plain(const std::string& page) {
    std::string plain = std::regex_replace(page, std::regex(R"(\\f[BIR])"), "");
    plain = std::regex_replace(plain, std::regex(R"(\\-)"), "-");
    return std::regex_replace(plain, std::regex(R"(\\\(aq)"), "'");
}

/// The text of each command's section on the plain page, by the command's name.
std::map<std::string, std::string> SectionsOfCommands(const std::string& page) {
    std::map<std::string, std::string> sections;
    const std::string heading = "\n.SS ";
    for (std::size_t at = page.find(heading); at != std::string::npos; at = page.find(heading, at + 1)) {
        const std::string section = page.substr(at + 1, page.find("\n.S", at + 1) - at);
        std::smatch name;
        EXPECT_TRUE(std::regex_search(section, name, std::regex("[.]SS ([a-z]+( [a-z]+)*)")));
        sections[name.str(1)] = section;
    }
    return sections;
}

TEST(Documents, Program_IsDescribedWithEveryCommandAndOption) {
    std::string text = ReadProjectFile("README.md");
    for (const auto& entry : std::filesystem::directory_iterator("docs"))
        text += ReadProjectFile("docs/" + entry.path().filename().string());
    const Options commands = CommandLine().Names(true);
    EXPECT_GE(commands.size(), 15U);
    for (const auto& [command, options] : commands) {
        EXPECT_TRUE(Contains(text, command)) << command;
        for (const std::string& each : options)
            EXPECT_TRUE(Contains(text, each)) << command << ' ' << each;
    }
}

TEST(ProgramText, Commands_AreAllOfTheCommandLineInItsOrder) {
    const CommandLine commandLine;
    std::vector<std::string> names;
    for (const CommandText& each : AllCommands(DescribeProgram(commandLine.app)))
        names.push_back(each.name);
    EXPECT_EQ(names.at(0), "vant");
    EXPECT_EQ(names.at(1), "vant run");
    const auto group = std::find(names.begin(), names.end(), "vant new");
    ASSERT_NE(group, names.end());
    EXPECT_EQ(*(group + 1), "vant new procedure");
    EXPECT_EQ(names.size(), commandLine.Names(false).size());
}

TEST(ProgramText, HiddenOptionsAndCommands_AreLeftOut) {
    CLI::App app("Counts.", "count");
    app.add_flag("--inside")->group("");
    app.add_subcommand("secret")->group("");
    const CommandText text = DescribeProgram(app);
    ASSERT_EQ(text.options.size(), 1U);
    EXPECT_EQ(text.options.at(0).names, (std::vector<std::string>{"-h", "--help"}));
    EXPECT_TRUE(text.subcommands.empty());
}

TEST(ProgramText, Values_AreThoseOfTheDeclaration) {
    CLI::App app("Counts.", "count");
    std::string file;
    int number = 3;
    std::vector<std::string> words;
    bool flag = false;
    app.set_help_flag();
    app.add_option("FILE", file, "What to count")->required();
    app.add_option("WORD", words, "Words");
    app.add_option("--up-to", number, "The last one")
        ->type_name("N")
        ->check(CLI::PositiveNumber)
        ->capture_default_str();
    app.add_flag("--fast", flag, "Count fast");
    const CommandText text = DescribeProgram(app);
    ASSERT_EQ(text.arguments.size(), 2U);
    EXPECT_EQ(text.arguments[0].value, "FILE");
    EXPECT_TRUE(text.arguments[0].isRequired);
    EXPECT_FALSE(text.arguments[0].isRepeated);
    EXPECT_FALSE(text.arguments[1].isRequired);
    EXPECT_TRUE(text.arguments[1].isRepeated);
    ASSERT_EQ(text.options.size(), 2U);
    EXPECT_EQ(text.options[0].value, "N");
    EXPECT_EQ(text.options[0].standard, "3");
    EXPECT_EQ(text.options[0].description, "The last one");
    EXPECT_EQ(text.options[1].value, "");
}

TEST(CompletionScripts, NameEveryCommandOptionAndClass) {
    const CommandLine commandLine;
    const CommandText program = DescribeProgram(commandLine.app);
    for (const std::string& script : {BashCompletion(program), ZshCompletion(program),
                                      FishCompletion(program), PowerShellCompletion(program)}) {
        SCOPED_TRACE(script.substr(0, script.find('\n')));
        const auto isWord = [&script](const std::string& word) {
            return std::regex_search(script, std::regex("[^\\w-]" + word + "[^\\w-]"));
        };
        for (const auto& [command, options] : commandLine.Names(false)) {
            EXPECT_TRUE(isWord(command.substr(command.rfind(' ') + 1))) << command;
            for (const std::string& each : options)
                EXPECT_TRUE(isWord(each) || Contains(script, " -l " + each.substr(2) + " "))
                    << command << ' ' << each;
        }
        for (const std::string& each : host::ClassNames())
            EXPECT_TRUE(isWord(each)) << each;
    }
}

TEST(CompletionScripts, QuotesInDescriptions_AreEscapedAsTheShellDemands) {
    CLI::App app("Counts.", "count");
    app.add_flag("--odd")->description("Tom's [5: \\6]");
    const CommandText program = DescribeProgram(app);
    EXPECT_TRUE(Contains(ZshCompletion(program), R"([Tom'\''s \[5: \\6\]])"));
    EXPECT_TRUE(Contains(FishCompletion(program), R"(-d 'Tom\'s [5: \\6]')"));
    EXPECT_TRUE(Contains(PowerShellCompletion(program), R"('--odd' = 'Tom''s [5: \6]')"));
}

TEST(ManualPage, Sections_ComeInTheUsualOrder) {
    const CommandLine commandLine;
    const std::string page = ManualPage(DescribeProgram(commandLine.app));
    EXPECT_TRUE(page.starts_with(".TH VANT 1 "));
    EXPECT_EQ(Matches(page, std::regex("\n[.]SH ([^\n]*)")),
              (std::vector<std::string>{"NAME", "SYNOPSIS", "OPTIONS", "COMMANDS", "FILES", "SEE ALSO"}));
    EXPECT_TRUE(Contains(page, ".SH NAME\nvant \\- runs diagnostic procedures"));
}

TEST(ManualPage, EveryCommand_HasItsDescriptionOptionsAndExitCodes) {
    const CommandLine commandLine;
    const CommandText program = DescribeProgram(commandLine.app);
    const auto sections = SectionsOfCommands(Plain(ManualPage(program)));
    const Options names = commandLine.Names(false);
    for (const CommandText& command : AllCommands(program)) {
        if (command.name == "vant")
            continue;
        SCOPED_TRACE(command.name);
        ASSERT_TRUE(sections.contains(command.name));
        const std::string& section = sections.at(command.name);
        EXPECT_TRUE(Contains(section, "\n" + command.description + ".\n"));
        EXPECT_TRUE(Contains(section, command.footer + "\n"));
        EXPECT_TRUE(Contains(section, "Exit codes: 0 ") || !command.subcommands.empty());
        for (const std::string& each : names.at(command.name))
            EXPECT_TRUE(each == "--help" || std::regex_search(section, std::regex("\n" + each + "[ \n]")))
                << each;
    }
    EXPECT_EQ(sections.size() + 1, names.size());
}

TEST(ManualPage, Lines_AreTextOrKnownMacros) {
    CLI::App app("Counts.", "count");
    app.add_flag("--odd")->description(".hidden 'a\\b'");
    app.footer("'begins like a macro");
    app.add_subcommand("one", ".one")->footer("'two");
    const CommandLine commandLine;
    for (const std::string& page :
         {ManualPage(DescribeProgram(app)), ManualPage(DescribeProgram(commandLine.app))}) {
        EXPECT_EQ(Matches(page, std::regex("\n(')")), std::vector<std::string>());
        for (const std::string& macro : Matches(page, std::regex("\n[.]([^ \n]*)")))
            EXPECT_TRUE((std::set<std::string>{"SH", "SS", "TP", "PP", "br"}).contains(macro)) << macro;
    }
    EXPECT_TRUE(Contains(ManualPage(DescribeProgram(app)), "\n\\&.hidden \\(aqa\\eb\\(aq.\n"));
}

TEST(ManualPage, Documents_Exist) {
    const CommandLine commandLine;
    const auto pages =
        Matches(Plain(ManualPage(DescribeProgram(commandLine.app))), std::regex("\n(docs/[^\n]*)"));
    EXPECT_GE(pages.size(), 4U);
    for (const std::string& each : pages)
        EXPECT_TRUE(std::filesystem::exists(each)) << each;
}

} // namespace
} // namespace vant::test
