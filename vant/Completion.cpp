#include "vant/Completion.h"

#include "host/procedure/ClassReport.h"

#include <algorithm>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <string_view>
#include <vector>

namespace vant::program {

namespace {

/// What the name of a value says about the texts to offer; no other value has any.
constexpr std::string_view tomlFile = "FILE";
constexpr std::string_view anyFile = "PATH";
constexpr std::string_view className = "CLASS";

std::string ClassNamesInOrder() {
    std::vector<std::string> names = host::ClassNames();
    std::sort(names.begin(), names.end());
    return fmt::format("{}", fmt::join(names, " "));
}

/// The value of the command's arguments; empty if it takes none.
std::string ArgumentValue(const CommandText& command) {
    return command.arguments.empty() ? "" : command.arguments.front().value;
}

std::string OptionNames(const CommandText& command) {
    std::vector<std::string> names;
    for (const ArgumentText& each : command.options)
        names.insert(names.end(), each.names.begin(), each.names.end());
    return fmt::format("{}", fmt::join(names, " "));
}

std::string SubcommandWords(const CommandText& command) {
    std::vector<std::string> words;
    for (const CommandText& each : command.subcommands)
        words.push_back(each.Word());
    return fmt::format("{}", fmt::join(words, " "));
}

/// The names of all subcommands, each in single quotes.
std::string AllSubcommands(const CommandText& program, std::string_view separator) {
    std::vector<std::string> names;
    for (const CommandText& each : AllCommands(program)) {
        if (each.name != program.name)
            names.push_back("'" + each.name + "'");
    }
    return fmt::format("{}", fmt::join(names, separator));
}

/// A text with a backslash before each of these characters.
std::string Escaped(std::string_view text, std::string_view characters) {
    std::string escaped;
    for (const char letter : text) {
        if (characters.find(letter) != std::string_view::npos)
            escaped += '\\';
        escaped += letter;
    }
    return escaped;
}

/// A text in single quotes, in which a single quote is written like this.
std::string InQuotes(std::string_view text, std::string_view quote) {
    std::string quoted = "'";
    for (const char letter : text)
        letter == '\'' ? quoted.append(quote) : quoted.append(1, letter);
    return quoted + "'";
}

// zsh

std::string ZshQuoted(std::string_view text) {
    return InQuotes(text, "'\\''");
}

std::string ZshFunction(const CommandText& command) {
    std::string name = "_" + command.name;
    std::replace(name.begin(), name.end(), ' ', '_');
    return name;
}

/// What `_arguments` offers for a value: its name and how to complete it.
std::string ZshValue(const std::string& value) {
    const std::string message = ":" + Escaped(value, ":\\");
    if (value == tomlFile)
        return message + ":_files -g \"*.toml(-.)\"";
    if (value == anyFile)
        return message + ":_files";
    if (value == className)
        return message + ":(" + ClassNamesInOrder() + ")";
    return message + ": ";
}

std::string ZshArguments(const CommandText& command) {
    std::string text;
    const auto add = [&text](const std::string& one) { text += " \\\n        " + ZshQuoted(one); };
    for (const ArgumentText& each : command.options) {
        const std::string others = each.isRepeated ? "*" : fmt::format("({})", fmt::join(each.names, " "));
        for (const std::string& name : each.names)
            add(others + name + (each.value.empty() ? "" : "=") + "[" + Escaped(each.description, "[]\\") +
                "]" + (each.value.empty() ? "" : ZshValue(each.value)));
    }
    for (const ArgumentText& each : command.arguments)
        add((each.isRepeated ? "*" : "1") + ZshValue(each.value));
    return text;
}

// fish

std::string FishQuoted(std::string_view text) {
    return "'" + Escaped(text, "'\\") + "'";
}

std::string FishValue(const std::string& value) {
    if (value == tomlFile)
        return " -f -k -a '(__fish_complete_suffix .toml)'";
    if (value == anyFile)
        return " -F";
    if (value == className)
        return " -f -a '" + ClassNamesInOrder() + "'";
    return " -f";
}

// PowerShell

std::string PowerShellQuoted(std::string_view text) {
    return InQuotes(text, "''");
}

} // namespace

std::string BashCompletion(const CommandText& program) {
    std::string text = "# Completion of " + program.name + " in bash. For ~/.bashrc:\n#     source <(" +
                       program.name + " completion bash)\n\n_" + program.name + R"sh(() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
    # The "=" in --option=VALUE is a word of its own.
    if [[ $word == "=" ]]; then
        word=''
    elif [[ $before == "=" ]]; then
        before=${COMP_WORDS[COMP_CWORD - 2]}
    fi
)sh";
    text += "    local command=" + program.name + R"sh( index
    for ((index = 1; index < COMP_CWORD; ++index)); do
        case "$command ${COMP_WORDS[index]}" in
)sh";
    text += "            " + AllSubcommands(program, " | \\\n            ") +
            ") command+=\" ${COMP_WORDS[index]}\" ;;\n";
    text += R"sh(        esac
    done
    local words='' options='' value=''
    case $command in
)sh";
    std::string values;
    for (const CommandText& command : AllCommands(program)) {
        text += fmt::format(
            "        '{}')\n            words='{}'\n            options='{}'\n            value='{}' ;;\n",
            command.name, SubcommandWords(command), OptionNames(command), ArgumentValue(command));
        for (const ArgumentText& option : command.options) {
            for (const std::string& name : option.names) {
                if (!option.value.empty())
                    values += fmt::format("        '{} {}') words='' options='' value='{}' ;;\n",
                                          command.name, name, option.value);
            }
        }
    }
    text += "    esac\n    case \"$command $before\" in\n" + values + "    esac\n";
    text += "    [[ $word != -* ]] || words+=\" $options\"\n";
    text += fmt::format("    [[ $value != {} ]] || words+=' {}'\n", className, ClassNamesInOrder());
    text += R"sh(    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
    # Outside of a completion there is nothing to set.
    case $value in
)sh";
    text += fmt::format("        {})\n", tomlFile);
    text += R"sh(            compopt -o filenames 2>/dev/null
            mapfile -t -O "${#COMPREPLY[@]}" COMPREPLY < <(compgen -d -- "$word"; compgen -f -X '!*.toml' -- "$word") ;;
)sh";
    text += fmt::format("        {})\n", anyFile);
    text += R"sh(            compopt -o filenames 2>/dev/null
            mapfile -t -O "${#COMPREPLY[@]}" COMPREPLY < <(compgen -f -- "$word") ;;
    esac
}
)sh";
    return text + fmt::format("complete -F _{0} {0}\n", program.name);
}

std::string ZshCompletion(const CommandText& program) {
    std::string text = fmt::format("#compdef {0}\n# Completion of {0} in zsh. For ~/.zshrc, after compinit:\n"
                                   "#     source <({0} completion zsh)\n",
                                   program.name);
    for (const CommandText& command : AllCommands(program)) {
        text += "\n" + ZshFunction(command) + "() {\n";
        if (command.subcommands.empty()) {
            text += "    _arguments -s" + ZshArguments(command) + "\n}\n";
            continue;
        }
        text += "    local context state state_descr line\n    typeset -A opt_args\n    _arguments -s -C" +
                ZshArguments(command) +
                " \\\n        '1:command:->command' \\\n        '*::argument:->argument'\n"
                "    case $state in\n        command)\n            local -a commands=(\n";
        std::string calls;
        for (const CommandText& each : command.subcommands) {
            text +=
                "                " + ZshQuoted(each.Word() + ":" + Escaped(each.description, ":\\")) + "\n";
            calls += fmt::format("                {}) {} ;;\n", each.Word(), ZshFunction(each));
        }
        text += "            )\n            _describe -t commands command commands ;;\n        argument)\n"
                "            case $words[1] in\n" +
                calls + "            esac ;;\n    esac\n}\n";
    }
    text += "\n# A file of functions that zsh loads by itself calls the function at once.\n";
    return text + fmt::format("if [[ $funcstack[1] == _{0} ]]; then\n    _{0} \"$@\"\nelse\n    compdef _{0} "
                              "{0}\nfi\n",
                              program.name);
}

std::string FishCompletion(const CommandText& program) {
    std::string text = fmt::format("# Completion of {0} in fish. For ~/.config/fish/config.fish:\n"
                                   "#     {0} completion fish | source\n\n"
                                   "# Whether the words so far are those of this command.\n"
                                   "function __{0}_command\n    set -l command {0}\n",
                                   program.name);
    text += R"sh(    for word in (commandline -opc)[2..-1]
        switch "$command $word"
)sh";
    text += "            case " + AllSubcommands(program, " ") + R"sh(
                set command "$command $word"
        end
    end
    test "$command" = "$argv"
end

)sh";
    text += fmt::format("complete -c {} -f\n", program.name);
    for (const CommandText& command : AllCommands(program)) {
        const std::string start =
            fmt::format("complete -c {} -n '__{}_command {}'", program.name, program.name, command.name);
        for (const CommandText& each : command.subcommands)
            text += fmt::format("{} -a {} -d {}\n", start, each.Word(), FishQuoted(each.description));
        for (const ArgumentText& each : command.arguments)
            text += start + FishValue(each.value) + "\n";
        for (const ArgumentText& each : command.options) {
            text += start;
            for (const std::string& name : each.names)
                text += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
            text += (each.value.empty() ? "" : " -r" + FishValue(each.value)) + " -d " +
                    FishQuoted(each.description) + "\n";
        }
    }
    return text;
}

std::string PowerShellCompletion(const CommandText& program) {
    std::string words, values;
    for (const CommandText& command : AllCommands(program)) {
        words += "        " + PowerShellQuoted(command.name) + " = [ordered]@{\n";
        const auto addWord = [&words](const std::string& word, const std::string& description) {
            words += "            " + PowerShellQuoted(word) + " = " + PowerShellQuoted(description) + "\n";
        };
        const auto addValue = [&](const std::string& name, const std::string& value) {
            if (!value.empty())
                values += "        " + PowerShellQuoted(command.name + name) + " = " +
                          PowerShellQuoted(value) + "\n";
        };
        for (const CommandText& each : command.subcommands)
            addWord(each.Word(), each.description);
        for (const ArgumentText& each : command.options) {
            for (const std::string& name : each.names) {
                addWord(name, each.description);
                addValue(" " + name, each.value);
            }
        }
        words += "        }\n";
        addValue("", ArgumentValue(command));
    }
    std::string text =
        fmt::format("# Completion of {0} in PowerShell. For $PROFILE:\n"
                    "#     {0} completion powershell | Out-String | Invoke-Expression\n\n"
                    "Register-ArgumentCompleter -Native -CommandName {0}, {0}.exe -ScriptBlock "
                    "{{\n    param($word, $line, $cursor)\n",
                    program.name);
    text += "    $words = @{\n" + words + "    }\n    $values = @{\n" + values + "    }\n";
    text += fmt::format("    $command = '{}'\n", program.name);
    text += R"ps(    $before = ''
    foreach ($element in $line.CommandElements | Select-Object -Skip 1) {
        if ($element.Extent.EndOffset -ge $cursor) { break }
        $before = $element.ToString()
        if ($words.ContainsKey("$command $before")) { $command = "$command $before" }
    }
    $value = $values["$command $before"]
    if (-not $value) {
        $value = $values[$command]
        foreach ($each in $words[$command].GetEnumerator()) {
            if ($each.Key -like "$word*" -and ($each.Key -notlike '-*' -or $word -like '-*')) {
                [System.Management.Automation.CompletionResult]::new($each.Key, $each.Key, 'ParameterValue', $each.Value)
            }
        }
    }
)ps";
    text += fmt::format("    if ($value -eq '{}') {{\n        (-split '{}') -like \"$word*\"\n    }} elseif "
                        "($value -eq '{}') {{\n",
                        className, ClassNamesInOrder(), tomlFile);
    text += R"ps(        [System.Management.Automation.CompletionCompleters]::CompleteFilename($word) |
            Where-Object { $_.ResultType -eq 'ProviderContainer' -or $_.ListItemText -like '*.toml' }
    }
    # Without any result PowerShell offers the names of files.
}
)ps";
    return text;
}

} // namespace vant::program
