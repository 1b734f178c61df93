#pragma once

#include "host/engine/model/EngineDescription.h"
#include "host/procedure/Toml.h"
#include "host/text/Diagnostic.h"

#include <string_view>

namespace vant::host {

/// Reads an engine from its TOML text. Every mistake goes into `found`; the result is a whole engine only if
/// `found` then has no errors.
EngineDescription ReadEngine(std::string_view toml, Diagnostics& found);

/// The same from a table that has been parsed.
EngineDescription ReadEngine(const toml::table& table, Diagnostics& found);

} // namespace vant::host
