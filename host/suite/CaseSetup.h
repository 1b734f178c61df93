#pragma once

#include "host/suite/TestCase.h"

#include <optional>
#include <string>
#include <vector>

namespace vant::host {

/// What a case changes in its procedure.
struct CaseSetup {
    std::map<std::string, Value> data{};
    std::map<std::string, Value> parameters{};
    std::optional<std::int64_t> seed{};
    std::vector<std::string> mayFail{};
};

/// The procedure as the case runs it. Every name in `setup` exists.
Procedure SetUp(const Procedure& procedure, const CaseSetup& setup);

/// A value that is given in place of a parameter's, as a value of its type: a whole number is a number, too.
/// Nothing if the types differ.
std::optional<Value> AsValueOf(const EngineParameter& parameter, const Value& given);

/// The type of a value as messages name it, such as "a whole number".
const char* TypeNameOf(const Value& value);

} // namespace vant::host
