#pragma once

#include "host/text/Diagnostic.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <toml++/toml.h>

namespace vant::host {

/// Parses a TOML text. Nothing, and a message in `found`, if its syntax is wrong. `file` is the name of the
/// text's file if that is not the one that `found` is about; every position then names it.
std::optional<toml::table> ParseToml(std::string_view toml, Diagnostics& found,
                                     const std::shared_ptr<const std::string>& file = nullptr);

Position PositionOf(const toml::source_region& region);
Position PositionOf(const toml::key& key);
Position PositionOf(const toml::node& node);

} // namespace vant::host
