#pragma once

#include "host/record/Journal.h"
#include "host/suite/JournalDiff.h"
#include "vant/ExitCode.h"

#include <string>
#include <vector>

namespace vant::program {

/// The records of a journal's file, whose name is UTF-8. Throws Failure.
std::vector<host::Record> ReadJournalFile(const std::string& file);

/// What may differ; `time` is the text of a duration. Throws Failure.
host::DiffTolerance ToleranceOf(const std::string& time, double value);

/// Prints the differences, as JSON or as text. Passed if there are none, else Failed. Throws Failure.
ExitCode PrintDifferences(const std::vector<host::JournalDifference>& differences, bool asJson);

} // namespace vant::program
