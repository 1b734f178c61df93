#pragma once

#include "host/record/Value.h"
#include "host/text/Diagnostic.h"

#include <map>
#include <string>
#include <vector>

namespace vant::host {

enum class Comparison { Is, IsNot, Below, Above, AtLeast, AtMost };

/// Compares a parameter of the engine, or a data-store entry, with a value. Texts in UTF-8.
struct Condition {
    enum class Kind { Parameter, Data };

    Kind kind = Kind::Parameter;
    std::string subject; ///< The parameter's id or the entry's name.
    Position position;   ///< Of the subject in the procedure file.
    Comparison comparison = Comparison::Is;
    Value value;         ///< Its type says what is compared: texts, numbers or truth values.
    std::string message; ///< The data-store entry that holds what is to be said when it does not hold.
    Position messagePosition;
};

/// The condition sets of a procedure, by the data-store entries that hold them.
using ConditionSets = std::map<std::string, std::vector<Condition>>;

/// The key of a procedure file that stands for a comparison.
const char* NameOf(Comparison comparison);

/// A condition as reports name it, as in "parameter 101000 atLeast 600".
std::string Describe(const Condition& condition);

/// Whether the actual value, which has that type, satisfies the condition.
bool Holds(const Condition& condition, const Value& actual);

} // namespace vant::host
