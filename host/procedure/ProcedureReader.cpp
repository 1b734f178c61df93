#include "host/procedure/ProcedureReader.h"

#include "host/procedure/ProcedureNames.h"
#include "host/text/Suggestion.h"

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <limits>
#include <sstream>
#include <stdexcept>
#include <system_error>
#include <toml++/toml.h>
#include <utility>

namespace vant {

namespace {

Position PositionOf(const toml::source_region& region) {
    return {std::max(region.begin.line, 1U), std::max(region.begin.column, 1U)};
}

Position PositionOf(const toml::key& key) {
    return PositionOf(key.source());
}

Position PositionOf(const toml::node& node) {
    return PositionOf(node.source());
}

std::string Quoted(std::string_view text) {
    return std::string(1, '\'').append(text).append(1, '\'');
}

/// What a value is, as messages name it.
const char* KindOf(const toml::node& node) {
    switch (node.type()) {
    case toml::node_type::table:
        return "a table";
    case toml::node_type::array:
        return "a list";
    case toml::node_type::string:
        return "a string";
    case toml::node_type::integer:
    case toml::node_type::floating_point:
        return "a number";
    case toml::node_type::boolean:
        return "true or false";
    default:
        return "a date or time";
    }
}

/// Goes through the TOML tables and builds the procedure, noting each mistake and going on.
class Reader {
public:
    explicit Reader(Diagnostics& found) : m_found(found) {}

    Procedure Read(const toml::table& root) {
        CheckKeys(root, "a procedure", {"name", "start", "data", "commands", "steps"});
        if (const auto name = RequiredText(root, "name", {1, 1}))
            m_procedure.name = name->text;
        if (auto start = RequiredText(root, "start", {1, 1}))
            m_procedure.start = std::move(*start);
        ForEach(root, "data", [this](const toml::key& key, const toml::node& node) { ReadData(key, node); });
        ForEach(root, "commands",
                [this](const toml::key& key, const toml::node& node) { ReadCommand(key, node); });
        ForEach(root, "steps", [this](const toml::key& key, const toml::node& node) { ReadStep(key, node); });
        if (m_procedure.steps.empty() && !root.contains("steps"))
            m_found.Error({1, 1}, "'steps' is missing: a procedure needs a step that ends it");
        return std::move(m_procedure);
    }

private:
    void ReadData(const toml::key& key, const toml::node& node) {
        Value& value = m_procedure.data[std::string(key.str())];
        if (const auto text = node.value_exact<std::string>()) {
            value = *text;
        } else if (const auto number = node.value_exact<std::int64_t>()) {
            value = *number;
            if (*number < std::numeric_limits<std::int32_t>::min() ||
                *number > std::numeric_limits<std::int32_t>::max())
                m_found.Error(
                    PositionOf(node),
                    "a whole number must lie between -2147483648 and 2147483647; write it in quotes "
                    "to keep it as text");
        } else if (const auto real = node.value_exact<double>()) {
            value = *real;
        } else if (const auto truth = node.value_exact<bool>()) {
            value = *truth;
        } else {
            m_found.Error(PositionOf(node), "data entry " + Quoted(key.str()) +
                                                " must be a string, a number, true or false, not " +
                                                KindOf(node));
        }
    }

    void ReadCommand(const toml::key& key, const toml::node& node) {
        Command& command = m_procedure.commands[std::string(key.str())];
        command.position = PositionOf(key);
        const toml::table* const table = AsTable(node, "command " + Quoted(key.str()));
        if (!table)
            return;
        CheckKeys(*table, "a command", {"class", "properties"});
        if (auto className = RequiredText(*table, "class", command.position))
            command.className = std::move(*className);
        ForEach(*table, "properties", [&](const toml::key& name, const toml::node& value) {
            if (auto text = Text(value, "property " + Quoted(name.str())))
                command.properties.push_back({{std::string(name.str()), PositionOf(name)}, std::move(*text)});
        });
    }

    void ReadStep(const toml::key& key, const toml::node& node) {
        Step& step = m_procedure.steps[std::string(key.str())];
        step.position = PositionOf(key);
        const toml::table* const table = AsTable(node, "step " + Quoted(key.str()));
        if (!table)
            return;
        CheckKeys(*table, "a step", {"run", "next", "failed", "on", "end"});
        if (const toml::node* const run = table->get("run"))
            ReadRun(*run, step);
        step.next = OptionalText(*table, "next");
        step.failed = OptionalText(*table, "failed");
        ForEach(*table, "on", [&](const toml::key& id, const toml::node& target) {
            if (auto text = Text(target, "transition " + Quoted(id.str())))
                step.on.emplace(std::string(id.str()), std::move(*text));
        });
        ReadEnd(*table, step);
        CheckShape(key, *table);
    }

    void ReadRun(const toml::node& node, Step& step) {
        const toml::array* const list = node.as_array();
        if (!list) {
            m_found.Error(PositionOf(node),
                          std::string("'run' must be a list of command ids, not ") + KindOf(node));
            return;
        }
        if (list->empty())
            m_found.Error(PositionOf(node), "'run' is empty: name a command, or leave the key out");
        for (const toml::node& each : *list) {
            if (auto id = Text(each, "a command id"))
                step.run.push_back(std::move(*id));
        }
    }

    void ReadEnd(const toml::table& table, Step& step) {
        const auto end = OptionalText(table, "end");
        if (!end)
            return;
        if (end->text == "passed") {
            step.end = Verdict::Passed;
        } else if (end->text == "failed") {
            step.end = Verdict::Failed;
        } else {
            const std::string names[] = {"passed", "failed"};
            m_found.Error(end->position, "'end' is \"passed\" or \"failed\"" + DidYouMean(end->text, names));
        }
    }

    /// A step either ends the procedure or leads somewhere.
    void CheckShape(const toml::key& key, const toml::table& table) {
        if (table.contains("end")) {
            for (const auto& [other, node] : table) {
                if (other != "end")
                    m_found.Error(PositionOf(other), "step " + Quoted(key.str()) +
                                                         " ends the procedure, so it can have no " +
                                                         Quoted(other.str()));
            }
            return;
        }
        const toml::table* const on = table["on"].as_table();
        if (!table.contains("next") && !(on && !on->empty() && table.contains("run")))
            m_found.Error(PositionOf(key),
                          "step " + Quoted(key.str()) +
                              " leads nowhere: give it 'next', or 'end', or 'run' with 'on'");
    }

    // What every table needs.

    void CheckKeys(const toml::table& table, const std::string& owner,
                   const std::vector<std::string>& known) {
        for (const auto& [key, node] : table) {
            if (std::find(known.begin(), known.end(), key.str()) == known.end())
                m_found.Error(PositionOf(key),
                              owner + " has no key " + Quoted(key.str()) + DidYouMean(key.str(), known));
        }
    }

    const toml::table* AsTable(const toml::node& node, const std::string& what) {
        const toml::table* const table = node.as_table();
        if (!table)
            m_found.Error(PositionOf(node), what + " must be a table, not " + KindOf(node));
        return table;
    }

    /// Visits the entries of a table that may be absent, in the file's order.
    template <class Visit>
    void ForEach(const toml::table& owner, std::string_view name, Visit visit) {
        const toml::node* const node = owner.get(name);
        const toml::table* const table = node ? AsTable(*node, Quoted(name)) : nullptr;
        if (!table)
            return;
        std::vector<std::pair<const toml::key*, const toml::node*>> entries;
        for (const auto& [key, value] : *table)
            entries.emplace_back(&key, &value);
        std::sort(entries.begin(), entries.end(),
                  [](const auto& a, const auto& b) { return PositionOf(*a.first) < PositionOf(*b.first); });
        for (const auto& [key, value] : entries)
            visit(*key, *value);
    }

    std::optional<Located> Text(const toml::node& node, const std::string& what) {
        if (const auto text = node.value_exact<std::string>())
            return Located{*text, PositionOf(node)};
        const bool quotable = !node.is_table() && !node.is_array();
        m_found.Error(PositionOf(node), what + " must be a string, not " + KindOf(node) +
                                            (quotable ? ": write it in quotes" : ""));
        return std::nullopt;
    }

    std::optional<Located> OptionalText(const toml::table& table, std::string_view key) {
        const toml::node* const node = table.get(key);
        return node ? Text(*node, Quoted(key)) : std::nullopt;
    }

    std::optional<Located> RequiredText(const toml::table& table, std::string_view key, Position owner) {
        if (!table.contains(key))
            m_found.Error(owner, Quoted(key) + " is missing");
        return OptionalText(table, key);
    }

    Diagnostics& m_found;
    Procedure m_procedure;
};

} // namespace

std::string ReadFile(const std::filesystem::path& file) {
    const auto fail = [](std::errc code) { throw std::runtime_error(std::make_error_code(code).message()); };
    if (std::filesystem::is_directory(file))
        fail(std::errc::is_a_directory);
    errno = 0;
    std::ifstream in(file, std::ios::binary);
    if (!in)
        fail(errno != 0 ? static_cast<std::errc>(errno) : std::errc::io_error);
    std::ostringstream content;
    if (in.peek() != std::ifstream::traits_type::eof())
        content << in.rdbuf();
    if (in.bad() || content.bad())
        fail(std::errc::io_error);
    return std::move(content).str();
}

Procedure ReadProcedure(std::string_view toml, Diagnostics& found) {
    try {
        const toml::table root = toml::parse(toml);
        Procedure procedure = Reader(found).Read(root);
        CheckNames(procedure, found);
        return procedure;
    } catch (const toml::parse_error& mistake) {
        found.Error(PositionOf(mistake.source()), std::string(mistake.description()));
        return {};
    }
}

} // namespace vant
