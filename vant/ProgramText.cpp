#include "vant/ProgramText.h"

#include <CLI/CLI.hpp>

namespace vant::program {

namespace {

std::vector<std::string> NamesOf(const CLI::Option& option) {
    std::vector<std::string> names;
    for (const std::string& each : option.get_snames())
        names.push_back("-" + each);
    for (const std::string& each : option.get_lnames())
        names.push_back("--" + each);
    return names;
}

std::string ValueOf(const CLI::Option& option) {
    if (option.get_positional())
        return option.get_name(true);
    if (option.get_items_expected_max() == 0)
        return "";
    // What a check says of itself follows.
    const std::string type = option.get_type_name();
    return type.substr(0, type.find(':'));
}

CommandText Describe(const CLI::App& command, const std::string& name) {
    CommandText text;
    text.name = name;
    text.description = command.get_description();
    text.footer = command.get_footer();
    for (const CLI::Option* const each : command.get_options()) {
        if (each->get_group().empty())
            continue;
        auto& list = each->get_positional() ? text.arguments : text.options;
        list.push_back({NamesOf(*each), ValueOf(*each), each->get_description(), each->get_default_str(),
                        each->get_required(), each->get_items_expected_max() > 1});
    }
    for (const CLI::App* const each : command.get_subcommands({})) {
        if (!each->get_group().empty())
            text.subcommands.push_back(Describe(*each, name + " " + each->get_name()));
    }
    return text;
}

void Collect(const CommandText& command, std::vector<CommandText>& all) {
    all.push_back(command);
    for (const CommandText& each : command.subcommands)
        Collect(each, all);
}

} // namespace

CommandText DescribeProgram(const CLI::App& program) {
    return Describe(program, program.get_name());
}

std::vector<CommandText> AllCommands(const CommandText& program) {
    std::vector<CommandText> all;
    Collect(program, all);
    return all;
}

} // namespace vant::program
