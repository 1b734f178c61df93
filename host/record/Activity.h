#pragma once

#include "host/record/Journal.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vant::host {

/// A value that a call has written or read.
struct UsedValue {
    enum class Kind { DataWritten, ParameterRead, ParameterWritten };

    Kind kind = Kind::DataWritten;
    std::string name; ///< Of the data-store entry, or the id of the parameter.
    Value value;
};

/// The value that a successful call has written or read, if it is one that reports show.
std::optional<UsedValue> UsedValueOf(const Record& call);

/// What reports tell about the work of one command, from its creation or the start of its thread on.
struct Activity {
    /// Further values and failed calls are only counted.
    static constexpr std::size_t most = 1000;

    struct FailedCall {
        Record call; ///< The first of them.
        std::size_t times = 1;
    };

    std::int64_t began = 0;                ///< As in records.
    std::vector<UsedValue> values{};       ///< For each kind and name the last value.
    std::vector<FailedCall> failedCalls{}; ///< Those with the same arguments and result are counted.
    std::size_t omitted = 0;

    void Take(const Record& call);
};

/// Collects from the records of a run what each command does.
class Activities {
public:
    void Take(const Record& record);
    /// The activity that a record of CommandEnded or ThreadEnded ends.
    Activity End(const Record& end);

private:
    std::vector<Activity>& Of(const Record& record) { return m_current[{record.thread, record.command}]; }

    /// By thread and command; the last one belongs to the innermost of commands with the same id.
    std::map<std::pair<std::string, std::string>, std::vector<Activity>> m_current;
};

} // namespace vant::host
