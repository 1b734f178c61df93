#include "host/procedure/ValueCheck.h"

#include "host/procedure/ClassReport.h"
#include "host/text/Duration.h"
#include "host/text/Printable.h"
#include "host/text/Suggestion.h"
#include "platform/Utf8.h"
#include "platform/Variant.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <fmt/format.h>
#include <limits>
#include <optional>
#include <set>
#include <string>
#include <utility>

namespace vant::host {

namespace {

constexpr std::int64_t largest = std::numeric_limits<std::int32_t>::max();

/// Which whole numbers a property takes, and how messages speak of them.
struct WholeNumbers {
    std::int64_t least;
    std::int64_t most;
    std::string_view what;
    std::string_view example;
    std::int64_t unit; ///< In milliseconds; 0 if the number is not a time.
};

std::optional<WholeNumbers> WholeNumbersOf(PropertyKind kind, std::string_view property) {
    switch (kind) {
    case PropertyKind::Seconds:
        return WholeNumbers{0, largest, "a whole number of seconds", "60", 1000};
    case PropertyKind::Milliseconds:
        // Nothing need precede the first reading, but readings without a wait between them are all the same.
        return WholeNumbers{property == "period" ? 1 : 0, largest, "a whole number of milliseconds", "1000",
                            1};
    case PropertyKind::Count:
        return WholeNumbers{1, largest, "a whole number", "10", 0};
    case PropertyKind::WholeNumber:
        // Decimals: further powers of 10 do not fit into 32 bits.
        return WholeNumbers{-9, 9, "a whole number", "2", 0};
    default:
        return std::nullopt;
    }
}

/// The number in a text as commands read it.
std::optional<double> NumberInText(const std::string& text) {
    CComVariant number(CComBSTR(ToWide(text)));
    if (FAILED(number.ChangeType(VT_R8, lcidEnglishUS)))
        return std::nullopt;
    return number.Get().dblVal;
}

std::optional<double> NumberRead(const Value& value) {
    const auto* const text = std::get_if<std::string>(&value);
    return text ? NumberInText(*text) : NumberIn(value);
}

/// A value as messages quote it.
std::string Shown(const Value& value) {
    if (const auto* const text = std::get_if<std::string>(&value))
        return Quoted(*text);
    if (const auto* const truth = std::get_if<bool>(&value))
        return *truth ? "true" : "false";
    const auto number = NumberIn(value);
    return number ? fmt::format("{}", *number) : "nothing";
}

/// A duration such as "4 s" as a number of units.
std::optional<std::int64_t> AsUnits(const Value& value, std::int64_t unit) {
    const auto* const text = std::get_if<std::string>(&value);
    if (!text || unit == 0)
        return std::nullopt;
    std::string tight = *text;
    std::erase(tight, ' ');
    const auto duration = ParseDuration(tight);
    if (!duration || *duration % unit != 0)
        return std::nullopt;
    return *duration / unit;
}

class ValueCheck {
public:
    ValueCheck(const Procedure& procedure, const DataUse& data, Diagnostics& found)
        : m_procedure(procedure), m_data(data), m_found(found), m_mayFail(NamesThatMayFail(procedure)) {}

    void Check(const CommandUse& use) {
        for (const Property& property : use.command->properties) {
            const ClassProperty* const known =
                FindClassProperty(use.command->className.text, property.name.text);
            if (known)
                CheckProperty(use, property, *known);
        }
    }

private:
    /// Where a value stands and what messages call it.
    struct Place {
        std::string name;
        Position position;
    };

    void CheckProperty(const CommandUse& use, const Property& property, const ClassProperty& known) {
        const Place place = {fmt::format("{} of command {}", Quoted(known.name), Quoted(use.id)),
                             property.value.position};
        const Value value = property.value.text;
        if (known.kind == PropertyKind::Choice)
            CheckWord(place, property.value.text, known);
        else if (known.kind == PropertyKind::DataEntryRead)
            CheckEntry(use, property, known);
        else if (known.kind == PropertyKind::ExpandedText)
            CheckReferences(place, property.value.text, false);
        else
            CheckValue(place, value, known.kind, known.name);
    }

    void CheckWord(const Place& place, const std::string& word, const ClassProperty& known) {
        const std::vector<std::string> words = WordsOf(known.words);
        if (std::find(words.begin(), words.end(), word) != words.end())
            return;
        std::string list;
        for (const std::string& each : words)
            list += Quoted(each) + ", ";
        m_found.Error(place.position, fmt::format("{} is one of {}not {}{}", place.name, list, Quoted(word),
                                                  DidYouMean(word, words)));
    }

    /// An entry that the procedure gives and nothing writes holds what it holds in every run.
    void CheckEntry(const CommandUse& use, const Property& property, const ClassProperty& known) {
        const std::string& name = property.value.text;
        const auto value = m_procedure.data.find(name);
        if (value == m_procedure.data.end() || !m_data.IsConstant(name) || m_mayFail.contains(use.id))
            return;
        const PropertyKind held = HeldKind(*use.command, known);
        if (!m_checked.emplace(name, held).second)
            return; // One mistake, though several commands read the entry.
        const Place place = {
            fmt::format("data entry {}, which command {} reads,", Quoted(name), Quoted(use.id)),
            m_procedure.dataPositions.at(name)};
        const auto* const text = std::get_if<std::string>(&value->second);
        const bool isExpanded = held == PropertyKind::ExpandedText;
        if (text && text->empty() && CannotBeEmpty(held, known.name)) {
            m_found.Warning(place.position, place.name +
                                                " is empty: write a value, or have every procedure that "
                                                "runs this one give it as an argument");
            return;
        }
        if (held == PropertyKind::ExpandedTextWithEntries) {
            if (text)
                CheckReferences(place, *text, true);
        } else if ((isExpanded || held == PropertyKind::Text) && !text) {
            m_found.Error(place.position, place.name + " must be a string: write it in quotes");
        } else if (isExpanded) {
            CheckReferences(place, *text, m_data.expandedWithEntries.contains(name));
        } else {
            CheckValue(place, value->second, held, known.name);
        }
    }

    static bool CannotBeEmpty(PropertyKind held, std::string_view property) {
        return held == PropertyKind::Parameter || held == PropertyKind::Number ||
               WholeNumbersOf(held, property).has_value();
    }

    void CheckReferences(const Place& place, const std::string& text, bool withEntries) {
        if (ReferencesIn(text, parameterReference).isOpen ||
            (withEntries && ReferencesIn(text, entryReference).isOpen))
            m_found.Warning(place.position, place.name + " has a reference without its ')'");
        else if (!withEntries && text.find(entryReference) != std::string::npos)
            m_found.Warning(place.position, place.name + " has a reference '$d(', which only the operation "
                                                         "'substitute' of a StringFormatter replaces");
    }

    void CheckValue(const Place& place, const Value& value, PropertyKind kind, std::string_view property) {
        if (kind == PropertyKind::Number)
            CheckNumber(place, value);
        else if (const auto numbers = WholeNumbersOf(kind, property))
            CheckWholeNumber(place, value, *numbers);
    }

    void CheckNumber(const Place& place, const Value& value) {
        const auto number = NumberRead(value);
        if (!number)
            m_found.Error(place.position,
                          fmt::format("{} must be a number, not {}", place.name, Shown(value)));
        else
            WarnOfComma(place, value, *number);
    }

    /// A comma separates thousands, wherever it stands.
    void WarnOfComma(const Place& place, const Value& value, double number) {
        const auto* const text = std::get_if<std::string>(&value);
        if (text && text->find(',') != std::string::npos)
            m_found.Warning(place.position, fmt::format("{} is read as {}: write a point before decimals, "
                                                        "and no comma",
                                                        place.name, number));
    }

    void CheckWholeNumber(const Place& place, const Value& value, const WholeNumbers& numbers) {
        const auto number = NumberRead(value);
        const double whole = number ? std::nearbyint(*number) : 0;
        if (!number || whole < static_cast<double>(numbers.least) ||
            whole > static_cast<double>(numbers.most)) {
            const auto units = AsUnits(value, numbers.unit);
            const std::string write = units && *units >= numbers.least && *units <= numbers.most
                                          ? fmt::format("write \"{}\"", *units)
                                          : fmt::format("for example \"{}\"", numbers.example);
            m_found.Error(place.position,
                          fmt::format("{} must be {} from {} to {}, not {}: {}", place.name, numbers.what,
                                      numbers.least, numbers.most, Shown(value), write));
        } else if (whole != *number) {
            m_found.Warning(place.position,
                            fmt::format("{} is rounded to {}: write {}", place.name, whole, numbers.what));
        } else {
            WarnOfComma(place, value, *number);
        }
    }

    const Procedure& m_procedure;
    const DataUse& m_data;
    std::set<std::pair<std::string, PropertyKind>> m_checked; ///< Entries, and as what they are read.
    Diagnostics& m_found;
    const std::set<std::string_view> m_mayFail;
};

} // namespace

void CheckValues(const Procedure& procedure, std::span<const CommandUse> commands, const DataUse& data,
                 Diagnostics& found) {
    ValueCheck check(procedure, data, found);
    for (const CommandUse& command : commands)
        check.Check(command);
}

} // namespace vant::host
