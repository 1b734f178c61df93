#pragma once

#include <string>

namespace vant::program {

/// The kinds of files that `vant new` writes.
enum class FileKind { Procedure, Engine, Test };

/// The ending of the names of such files, such as ".test.toml".
std::string EndingOf(FileKind kind);

/// The content of a new file. `name` is its name without folder and ending, and needs no escapes in a TOML
/// string and holds no "<".
std::string NewFileText(FileKind kind, const std::string& name);

/// A file name as one word of a command line: in double quotes if a shell would otherwise read it
/// differently.
std::string WordOfCommandLine(const std::string& text);

} // namespace vant::program
