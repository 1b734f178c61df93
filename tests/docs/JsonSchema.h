#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace vant::test {

/// What of a document violates a schema, each as "PATH: MESSAGE"; empty if it is valid. The schema may use
/// the keywords of JSON Schema 2020-12 that the tests need: $ref to a definition of its own, allOf, anyOf,
/// type, const, enum, pattern, minimum, required, properties, additionalProperties and items. Throws
/// std::runtime_error for any other.
std::vector<std::string> ViolationsOf(const nlohmann::json& schema, const nlohmann::json& document);

} // namespace vant::test
