#pragma once

#include "host/services/Services.h"

#include <string>
#include <string_view>

namespace vant::host {

/// The text of a question with the texts of the entries and parameters to which it refers, as in "$d(NAME)"
/// and
/// "$p(ID)". "?" stands for one that cannot be read; a reference without ")" remains.
std::string ExpandQuestion(std::string_view text, const Services& services);

} // namespace vant::host
