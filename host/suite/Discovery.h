#pragma once

#include <span>
#include <string>
#include <vector>

namespace vant::host {

/// Whether a file is a test file, by its name.
bool IsTestFile(const std::string& file);

/// The test files and procedures that `paths` stand for, each once. A file stands for itself. A folder stands
/// for the test files in it and below it, by name; if there are none, for the procedures there, except those
/// that only run as a part of others. Hidden folders are left out. Names in UTF-8. Throws InputError if a
/// path does not exist, a folder cannot be read, or there is nothing to test in it.
std::vector<std::string> FindTests(std::span<const std::string> paths);

} // namespace vant::host
