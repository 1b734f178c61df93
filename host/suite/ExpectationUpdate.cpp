#include "host/suite/ExpectationUpdate.h"

#include "host/procedure/Toml.h"
#include "host/runner/Runner.h"
#include "host/suite/TestFileReader.h"
#include "host/text/Printable.h"

#include <algorithm>
#include <cstddef>
#include <fmt/format.h>
#include <string_view>
#include <utility>

namespace vant::host {

namespace {

/// A text that is changed at positions of TOML.
class EditedText {
public:
    explicit EditedText(std::string text) : m_text(std::move(text)) {}

    /// The place of a position of the text as it was at the beginning.
    std::size_t At(toml::source_position position) const {
        std::size_t at = 0;
        for (std::uint32_t line = 1; line < position.line; ++line)
            at = m_text.find('\n', at) + 1;
        for (std::uint32_t column = 1; column < position.column; ++column) {
            do
                ++at;
            while (at < m_text.size() && (static_cast<unsigned char>(m_text[at]) & 0xC0U) == 0x80U);
        }
        return at;
    }

    char CharacterAt(std::size_t place) const { return place < m_text.size() ? m_text[place] : '\0'; }

    /// The end of a line, before what ends it.
    std::size_t EndOfLine(std::size_t place) const {
        const std::size_t end = std::min(m_text.find('\n', place), m_text.size());
        return end > 0 && m_text[end - 1] == '\r' ? end - 1 : end;
    }

    const char* NewLine() const { return m_text.find("\r\n") == std::string::npos ? "\n" : "\r\n"; }

    void Replace(std::size_t begin, std::size_t end, std::string text) {
        m_edits.push_back({begin, end, std::move(text)});
    }
    void Insert(std::size_t place, std::string text) { Replace(place, place, std::move(text)); }

    std::string Finish() {
        // From the end on, so that the places before stay what they are.
        std::stable_sort(m_edits.begin(), m_edits.end(),
                         [](const Edit& a, const Edit& b) { return a.begin > b.begin; });
        for (const Edit& each : m_edits)
            m_text.replace(each.begin, each.end - each.begin, each.text);
        return std::move(m_text);
    }

private:
    struct Edit {
        std::size_t begin;
        std::size_t end;
        std::string text;
    };

    std::string m_text;
    std::vector<Edit> m_edits;
};

using Entries = std::vector<std::pair<std::string, std::string>>;

/// The entries that are to stand in the table, as TOML has them. Its basic strings are those of JSON.
Entries EntriesOf(const NewExpectation& wanted) {
    const auto quote = [](const std::string& text) { return Json(text).dump(); };
    Entries entries;
    if (wanted.verdict)
        entries.emplace_back("verdict", quote(*wanted.verdict));
    if (wanted.ending)
        entries.emplace_back("ending", quote(*wanted.ending));
    if (wanted.path) {
        std::string list;
        for (const std::string& each : *wanted.path)
            list += (list.empty() ? "" : ", ") + quote(each);
        entries.emplace_back("path", '[' + list + ']');
    }
    return entries;
}

/// Each entry as "KEY = VALUE", with this before and that between them.
std::string Written(const Entries& entries, const std::string& before, const std::string& between) {
    std::string text;
    for (const auto& [key, value] : entries)
        text += fmt::format("{}{}{} = {}", text.empty() ? "" : between, before, key, value);
    return text;
}

const toml::table* FindCase(const toml::table& root, const std::string& name) {
    const toml::array* const cases = root.get_as<toml::array>("case");
    for (std::size_t i = 0; cases && i < cases->size(); ++i) {
        const toml::table* const each = cases->get_as<toml::table>(i);
        const auto* const found = each ? each->get_as<std::string>("name") : nullptr;
        if (found && found->get() == name)
            return each;
    }
    return nullptr;
}

/// Adds entries to the table of an expectation, however it is written.
void AddEntries(EditedText& text, const toml::table& expected, std::size_t afterName,
                const Entries& entries) {
    const std::size_t begin = text.At(expected.source().begin);
    const std::string newLine = text.NewLine();
    if (expected.is_inline())
        text.Insert(begin + 1, ' ' + Written(entries, "", ", ") + (expected.empty() ? " " : ","));
    else if (text.CharacterAt(begin) == '[')
        text.Insert(text.EndOfLine(begin), newLine + Written(entries, "", newLine));
    else // Its keys begin with "expected.".
        text.Insert(afterName, newLine + Written(entries, "expected.", newLine));
}

bool Fits(const Expectation& expected, const NewExpectation& wanted) {
    const auto isStep = [](const Located& step, const std::string& name) { return step.text == name; };
    return (!wanted.verdict || *wanted.verdict == NameOf(expected.verdict)) &&
           (!wanted.ending || (expected.ending && expected.ending->text == *wanted.ending)) &&
           (!wanted.path || (expected.path && std::equal(expected.path->begin(), expected.path->end(),
                                                         wanted.path->begin(), wanted.path->end(), isStep)));
}

/// Throws UpdateError unless the new text has the case with what is wanted.
void CheckUpdated(const std::string& toml, const TestCase& tested, const NewExpectation& wanted) {
    Diagnostics found;
    const auto cases = ReadTestFile(toml, tested.file, found);
    const auto updated = std::find_if(cases.begin(), cases.end(),
                                      [&tested](const TestCase& each) { return each.name == tested.name; });
    if (found.HasErrors() || updated == cases.end() || !Fits(updated->expected, wanted))
        throw UpdateError("its expectation is written in a form that cannot be changed");
}

} // namespace

NewExpectation NeededFor(const TestCase& tested, const Json& result) {
    const std::vector<std::string> path = result["path"];
    NewExpectation all = {.verdict = result["verdict"].get<std::string>(),
                          .ending = path.empty() ? std::nullopt : std::optional(path.back()),
                          .path = path.empty() ? std::nullopt : std::optional(path)};
    if (!tested.hasExpectation && !tested.isSwept)
        return all;
    NewExpectation needed;
    if (!Fits(tested.expected, {.verdict = all.verdict}))
        needed.verdict = all.verdict;
    if (tested.expected.ending && !Fits(tested.expected, {.ending = all.ending}))
        needed.ending = all.ending;
    if (tested.expected.path && !Fits(tested.expected, {.path = all.path}))
        needed.path = all.path;
    return needed;
}

std::string UpdateExpectation(const std::string& toml, const TestCase& tested, const NewExpectation& wanted) {
    if (tested.isSwept)
        throw UpdateError("a sweep stands for many cases, which may differ");
    Diagnostics found;
    const auto root = ParseToml(toml, found);
    const toml::table* const table = root ? FindCase(*root, tested.name) : nullptr;
    if (!table)
        throw UpdateError("its file has changed");
    if (table->is_inline())
        throw UpdateError("it stands in a list; write it under [[case]]");
    EditedText text(toml);
    const std::size_t afterName = text.EndOfLine(text.At(table->get("name")->source().end));
    const Entries entries = EntriesOf(wanted);
    const toml::node* const node = table->get("expected");
    if (!node) {
        text.Insert(afterName, text.NewLine() + ("expected = { " + Written(entries, "", ", ") + " }"));
    } else if (const toml::table* const expected = node->as_table()) {
        Entries missing;
        for (const auto& [key, value] : entries) {
            if (const toml::node* const old = expected->get(key))
                text.Replace(text.At(old->source().begin), text.At(old->source().end), value);
            else
                missing.emplace_back(key, value);
        }
        if (!missing.empty())
            AddEntries(text, *expected, afterName, missing);
    }
    std::string updated = text.Finish();
    CheckUpdated(updated, tested, wanted);
    return updated;
}

} // namespace vant::host
