#pragma once

#include "host/record/Json.h"

#include <string>
#include <string_view>
#include <vector>

namespace vant::host {

/// The names of all command classes, in the order of the class table.
std::vector<std::string> ClassNames();

/// The words of a choice, which spaces separate.
std::vector<std::string> WordsOf(std::string_view words);

/// The kind of a property as `vant classes` shows it, such as "count"; empty if there is no such property.
std::string KindOfProperty(const std::string& className, const std::string& name);

/// A class and what its properties mean, as lines of text.
std::string DescribeClass(const std::string& name);

/// {"class": NAME, "properties": [{"name": NAME, "alternative": NAME or null, "required": TRUTH, "kind":
/// KIND,
///   "holds": KIND or null, "words": [WORD], "meaning": TEXT}]}; the kinds as in `vant classes`.
Json ClassToJson(const std::string& name);

} // namespace vant::host
