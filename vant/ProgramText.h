#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace vant::program {

/// An option, or an argument that stands by itself.
struct ArgumentText {
    std::vector<std::string> names; ///< As in "-h", "--help"; empty for an argument.
    std::string value;              ///< Such as "FILE"; empty for an option without a value.
    std::string description;
    std::string standard; ///< The value if the option is left out; empty if none is to be shown.
    bool isRequired = false;
    bool isRepeated = false;
};

/// The program or one of its subcommands, as its declaration describes it.
struct CommandText {
    std::string name; ///< With those before it, such as "vant new test".
    std::string description;
    std::string footer;
    std::vector<ArgumentText> options;
    std::vector<ArgumentText> arguments;
    std::vector<CommandText> subcommands;

    /// The last word of the name.
    std::string Word() const { return name.substr(name.rfind(' ') + 1); }
};

/// The texts of a command line, without what is hidden from users.
CommandText DescribeProgram(const CLI::App& program);

/// The program and all subcommands, each before its own.
std::vector<CommandText> AllCommands(const CommandText& program);

} // namespace vant::program
