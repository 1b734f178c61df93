#include "vant/Diff.h"

#include "vant/JournalComparison.h"

namespace vant::program {

using namespace host;

ExitCode Diff(const DiffOptions& options) {
    const DiffTolerance tolerance = ToleranceOf(options.time, options.value);
    const std::vector<Record> a = ReadJournalFile(options.a);
    const std::vector<Record> b = ReadJournalFile(options.b);
    return PrintDifferences(CompareJournals(a, b, tolerance), options.json);
}

} // namespace vant::program
