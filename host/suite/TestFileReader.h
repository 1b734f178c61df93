#pragma once

#include "host/suite/TestCase.h"

#include <string>
#include <string_view>
#include <vector>

namespace vant::host {

/// How the names of test files end.
inline constexpr std::string_view testFileEnding = ".test.toml";

/// Reads the cases of a test file, in its order, a swept one as all cases that it stands for. `file` is its
/// name in UTF-8, to whose folder the names in it are relative. Every mistake goes into `found`; what the
/// cases name is not looked at. docs/testing.md describes the file.
std::vector<TestCase> ReadTestFile(std::string_view toml, const std::string& file, Diagnostics& found);

} // namespace vant::host
