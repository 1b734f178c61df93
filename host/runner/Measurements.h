#pragma once

#include "host/procedure/Procedure.h"
#include "host/record/Journal.h"

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vant::host {

/// What became of a measurement.
enum class Outcome {
    Passed,
    Failed,
    Missing, ///< It was not made.
    Skipped  ///< It was not made, and need not be.
};

/// "passed", "failed", "missing" or "skipped".
const char* NameOf(Outcome outcome);

/// The measurements of a procedure during its run. Any thread may call.
class Measurements {
public:
    /// The measurements must outlive this object.
    explicit Measurements(const std::map<std::string, Measurement>& measurements)
        : m_measurements(measurements) {}

    /// A command begins that is to write an entry: what was written to it before is no measurement any more.
    void Expect(const std::string& entry);
    /// From now on writes belong to a try, whose measurements may be dropped until the next one begins.
    void BeginTry();
    void DropTry();
    /// An entry of the data store was written.
    void Take(const std::string& entry, Value value, std::int64_t time, const std::string& step);

    struct Result {
        std::string name;
        const Measurement* measurement;
        Outcome outcome;
        std::optional<Value> value; ///< The last one; nothing if the measurement was not made.
        std::int64_t time = 0;      ///< When and in which step it was written.
        std::string step{};
    };
    /// One for each measurement, by name.
    std::vector<Result> Results() const;

private:
    struct Written {
        Value value;
        std::int64_t time;
        std::string step;
        std::uint64_t inTry;
    };

    const std::map<std::string, Measurement>& m_measurements;
    mutable std::mutex m_access;
    std::map<std::string, Written> m_written; ///< By entry.
    std::uint64_t m_try = 0;                  ///< The number of the current one.
};

} // namespace vant::host
