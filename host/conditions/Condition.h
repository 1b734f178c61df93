#pragma once

#include "host/record/Value.h"
#include "host/text/Diagnostic.h"

#include <array>
#include <map>
#include <string>
#include <vector>

namespace vant::host {

enum class Comparison { Is, IsNot, Below, Above, AtLeast, AtMost };

/// Compares a parameter of the engine, or a data-store entry, with a value or another entry. Texts are UTF-8.
struct Condition {
    enum class Kind { Parameter, Data };

    Kind kind = Kind::Parameter;
    std::string subject; ///< The parameter's id or the entry's name.
    Position position;   ///< Of the subject in the procedure file.
    Comparison comparison = Comparison::Is;
    Value value; ///< Its type determines whether texts, numbers or truth values are compared.
    /// The data-store entry with which the subject is compared, in place of `value`; empty: none. `value` is
    /// then a number or a text, whichever is compared.
    std::string otherEntry{};
    Position otherPosition{};
    /// The data-store entry with the message for the case that the condition does not hold.
    std::string message{};
    Position messagePosition{};
    bool hasOwnMessage = true; ///< Otherwise `message` is made up, and its text is the description.
};

/// Conditions that are evaluated together.
struct Conditions {
    Position position{}; ///< Of the set's name.
    bool any = false;    ///< Whether one condition that holds is enough.
    bool failSafe =
        false; ///< Whether a condition that cannot be read is one that does not hold, and nothing else.
    std::vector<Condition> list{};
};

/// The condition sets of a procedure, by the data-store entries that hold them.
using ConditionSets = std::map<std::string, Conditions>;

/// All comparisons, in the order in which messages list them.
inline constexpr std::array comparisons = {Comparison::Is,    Comparison::IsNot,   Comparison::Below,
                                           Comparison::Above, Comparison::AtLeast, Comparison::AtMost};

/// The key of a comparison in a procedure file.
const char* NameOf(Comparison comparison);
/// Whether a comparison is one of numbers alone.
constexpr bool IsOrder(Comparison comparison) noexcept {
    return comparison != Comparison::Is && comparison != Comparison::IsNot;
}

/// A condition as reports show it, such as "parameter 101000 atLeast 600".
std::string Describe(const Condition& condition);
/// A set as reports show it: its conditions, separated by "; ", or "any of: " and its conditions.
std::string Describe(const Conditions& conditions);

/// Whether a value compares with a limit of the same type as the comparison says.
bool Holds(Comparison comparison, const Value& actual, const Value& limit);

} // namespace vant::host
