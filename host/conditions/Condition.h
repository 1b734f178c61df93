#pragma once

#include "host/record/Value.h"
#include "host/text/Diagnostic.h"

#include <map>
#include <string>
#include <vector>

namespace vant::host {

enum class Comparison { Is, IsNot, Below, Above, AtLeast, AtMost };

/// Compares a parameter of the engine, or a data-store entry, with a value. Texts are UTF-8.
struct Condition {
    enum class Kind { Parameter, Data };

    Kind kind = Kind::Parameter;
    std::string subject; ///< The parameter's id or the entry's name.
    Position position;   ///< Of the subject in the procedure file.
    Comparison comparison = Comparison::Is;
    Value value; ///< Its type determines whether texts, numbers or truth values are compared.
    std::string
        message; ///< The data-store entry with the message for the case that the condition does not hold.
    Position messagePosition;
};

/// The condition sets of a procedure, by the data-store entries that hold them.
using ConditionSets = std::map<std::string, std::vector<Condition>>;

/// The key of a comparison in a procedure file.
const char* NameOf(Comparison comparison);

/// A condition as reports show it, such as "parameter 101000 atLeast 600".
std::string Describe(const Condition& condition);

/// Whether the actual value, which has the type of the condition's value, satisfies the condition.
bool Holds(const Condition& condition, const Value& actual);

} // namespace vant::host
