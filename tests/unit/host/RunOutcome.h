#pragma once

#include "host/record/Journal.h"
#include "host/runner/ProcedureRun.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace vant::host {

/// How a run went.
struct RunOutcome {
    Verdict verdict{};
    std::string reason;
    std::vector<Record> records;

    /// The records of an operation, of all commands or of one.
    std::vector<Record> Of(std::string_view operation, std::string_view command = {}) const;
    /// The time of the first of them, which must exist.
    std::int64_t TimeOf(std::string_view operation, std::string_view command = {}) const;
    /// The steps that were entered and when, such as "s:0 good:5000".
    std::string Path() const;
    /// The commands that were executed, in the order in which they ended.
    std::string Executed() const;
    /// The values in which that data entry was left by each procedure that has it, the called ones first.
    std::vector<std::string> LeftIn(std::string_view entry) const;
};

using RecordFilter = std::function<bool(const Record&)>;

RecordFilter IsOperation(std::string operation);

/// Reads a procedure that must have no errors.
Procedure ProcedureOf(const std::string& toml);

/// Runs the procedure in virtual time with the built module; aborts the run at each record for which
/// `abortAt` is true. Afterwards no object may be held.
RunOutcome RunProcedure(const Procedure& procedure, const RunSettings& settings = {},
                        const RecordFilter& abortAt = {});

/// Runs the procedure likewise, except that creating a command of one class throws. The run must pass that
/// on; the outcome has no verdict.
RunOutcome RunWithBrokenClass(const Procedure& procedure, const std::string& brokenClass);

} // namespace vant::host
