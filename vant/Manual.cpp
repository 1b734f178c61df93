#include "vant/Manual.h"

#include "platform/DynamicLibrary.h"

#include <algorithm>
#include <cctype>
#include <fmt/format.h>
#include <string_view>
#include <utility>

namespace vant::program {

namespace {

/// A text as it stands, for the formatter.
std::string Roff(std::string_view text) {
    std::string escaped;
    for (const char letter : text) {
        switch (letter) {
        case '\\':
            escaped += "\\e";
            break;
        case '-':
            escaped += "\\-";
            break;
        case '\'':
            escaped += "\\(aq";
            break;
        case '`':
            escaped += "\\(ga";
            break;
        case '^':
            escaped += "\\(ha";
            break;
        case '~':
            escaped += "\\(ti";
            break;
        default:
            escaped += letter;
        }
    }
    return escaped.starts_with('.') ? "\\&" + escaped : escaped;
}

std::string Bold(std::string_view text) {
    return "\\fB" + Roff(text) + "\\fR";
}

std::string Italic(std::string_view text) {
    return "\\fI" + Roff(text) + "\\fR";
}

/// A description as a sentence.
std::string Sentence(const std::string& description) {
    return Roff(description) + (description.ends_with('.') ? "" : ".");
}

/// A list entry: what it is about, and a text.
std::string Entry(const std::string& head, const std::string& text) {
    return ".TP\n" + head + "\n" + text + "\n";
}

bool IsHelp(const ArgumentText& option) {
    return std::find(option.names.begin(), option.names.end(), "--help") != option.names.end();
}

std::string Usage(const CommandText& command) {
    std::string usage = Bold(command.name);
    if (!std::all_of(command.options.begin(), command.options.end(), IsHelp))
        usage += fmt::format(" [{} ...]", Italic("OPTION"));
    if (!command.subcommands.empty())
        usage.append(" ").append(Italic("COMMAND"));
    for (const ArgumentText& each : command.arguments) {
        const std::string value = Italic(each.value) + (each.isRepeated ? " ..." : "");
        usage += each.isRequired ? fmt::format(" {}", value) : fmt::format(" [{}]", value);
    }
    return usage;
}

std::string OptionEntry(const ArgumentText& option) {
    std::string head;
    for (const std::string& each : option.names)
        head.append(head.empty() ? "" : ", ").append(Bold(each));
    if (!option.value.empty())
        head.append(" ").append(Italic(option.value));
    std::string text = Sentence(option.description);
    if (!option.standard.empty())
        text += fmt::format(" {} if left out.", Roff(option.standard));
    return Entry(head, text);
}

std::string Section(const CommandText& command) {
    std::string text = ".SS " + Usage(command) + "\n" + Sentence(command.description) + "\n";
    for (const ArgumentText& each : command.arguments)
        text += Entry(Italic(each.value), Sentence(each.description));
    for (const ArgumentText& each : command.options) {
        if (!IsHelp(each))
            text += OptionEntry(each);
    }
    return command.footer.empty() ? text : text + ".PP\n" + Roff(command.footer) + "\n";
}

std::string Files() {
    return Entry(Italic("NAME.toml"), "A procedure or an engine.") +
           Entry(Italic("NAME.test.toml"), "The test cases of procedures.") +
           Entry(Italic(LibraryFileName("VantCommands")),
                 "The module of the command classes, in the folder of the program.") +
           Entry(Italic("~/.local/share/VantCommands/catalogue.txt"),
                 "The registered classes. " + Bold("XDG_DATA_HOME") + " replaces the folder " +
                     Italic("~/.local/share") + ", and " + Bold("VANT_CATALOGUE") +
                     " the whole name. Windows has its registry instead.");
}

std::string Pages() {
    std::string text = "The documentation of VantCommands:\n";
    for (const auto& [page, subject] : {std::pair("vant.md", "the program"),
                                        {"procedures.md", "procedures, reports, exit codes and journals"},
                                        {"engines.md", "engines"},
                                        {"testing.md", "test files"},
                                        {"commands.md", "the command classes"},
                                        {"recipes.md", "examples"},
                                        {"registration.md", "registered classes"}})
        text += Entry(Italic("docs/" + std::string(page)), Sentence(subject));
    return text;
}

} // namespace

std::string ManualPage(const CommandText& program) {
    std::string purpose = program.description.substr(0, program.description.find('.'));
    purpose.front() = static_cast<char>(std::tolower(static_cast<unsigned char>(purpose.front())));

    std::string text = ".TH VANT 1 \"\" \"VantCommands " VANT_VERSION "\" \"User Commands\"\n";
    text += ".SH NAME\n" + Roff(program.name) + " \\- " + Roff(purpose) + "\n";
    text += ".SH SYNOPSIS\n";
    std::string separator;
    for (const CommandText& each : AllCommands(program)) {
        if (each.subcommands.empty())
            text += std::exchange(separator, ".br\n") + Usage(each) + "\n";
    }
    text += ".SH OPTIONS\nEvery command takes " + Bold("--help") + ", too.\n";
    for (const ArgumentText& each : program.options)
        text += OptionEntry(each);
    text += ".SH COMMANDS\n";
    for (const CommandText& each : AllCommands(program)) {
        if (each.name != program.name)
            text += Section(each);
    }
    return text + ".SH FILES\n" + Files() + ".SH SEE ALSO\n" + Pages();
}

} // namespace vant::program
