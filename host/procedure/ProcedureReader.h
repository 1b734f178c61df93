#pragma once

#include "host/procedure/Procedure.h"
#include "host/procedure/Toml.h"
#include "host/text/Diagnostic.h"

#include <span>
#include <string_view>
#include <vector>

namespace vant::host {

/// Reads a procedure from its TOML text. Every mistake goes into `found`; the result is a whole procedure
/// only if `found` then has no errors. After a mistake of TOML's own syntax nothing further is checked.
Procedure ReadProcedure(std::string_view toml, Diagnostics& found);
/// The same from a table that has been parsed, and from the tables of the files that it includes.
Procedure ReadProcedure(const toml::table& root, std::span<const toml::table> shared, Diagnostics& found);

/// The files that a procedure includes, relative to its folder.
std::vector<Located> ReadIncludes(const toml::table& root, Diagnostics& found);

} // namespace vant::host
