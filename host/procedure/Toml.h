#pragma once

#include "host/text/Diagnostic.h"

#include <optional>
#include <string_view>
#include <toml++/toml.h>

namespace vant::host {

/// Parses a TOML text. Nothing, and a message in `found`, if its syntax is wrong.
std::optional<toml::table> ParseToml(std::string_view toml, Diagnostics& found);

Position PositionOf(const toml::source_region& region);
Position PositionOf(const toml::key& key);
Position PositionOf(const toml::node& node);

} // namespace vant::host
