#pragma once

#include "host/procedure/Procedure.h"
#include "host/text/Diagnostic.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace vant::host {

/// The bytes of a file. Throws std::runtime_error with the system's reason where it cannot be read.
std::string ReadFile(const std::filesystem::path& file);

/// The name of a file in UTF-8, with slashes on every system, as diagnostics begin with it.
std::string FileName(const std::filesystem::path& file);

/// Reads a procedure from its TOML text. Every mistake goes into `found`; the result is a whole procedure
/// only where `found` then has no errors. After a mistake of TOML's own syntax nothing further is looked at.
Procedure ReadProcedure(std::string_view toml, Diagnostics& found);

} // namespace vant::host
