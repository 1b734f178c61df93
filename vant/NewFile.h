#pragma once

#include "vant/ExitCode.h"
#include "vant/FileTemplates.h"

#include <string>

namespace vant::program {

/// What `vant new` was asked to do.
struct NewFileOptions {
    FileKind kind = FileKind::Procedure;
    std::string name;   ///< Of the file in UTF-8, with or without its ending.
    bool force = false; ///< The new file may replace another one.
};

/// Writes a commented file to start from, and prints its name and what to do next. Throws Failure.
ExitCode WriteNewFile(const NewFileOptions& options);

} // namespace vant::program
