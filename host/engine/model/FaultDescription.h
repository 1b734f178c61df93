#pragma once

#include "host/record/Value.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vant::host {

// The records of a fault array, and when they are present; docs/engines.md has the rules. Times are in
// milliseconds since the engine began. Texts are UTF-8.

struct FaultFieldDescription {
    std::string name;
    std::string value;
};

/// Compares a parameter's value, as a read returns it without its noise.
struct FaultCondition {
    enum class Relation { Is, Above, AtLeast, Below, AtMost };

    std::string parameter;
    Relation relation = Relation::Is;
    Value value;               ///< Of the parameter's kind; a number unless the relation is Is.
    std::int64_t holdsFor = 0; ///< How long it must hold to set the record.
    bool latched = true;       ///< Whether the record remains when the condition no longer holds.
};

/// A write that clears a record.
struct FaultClearing {
    std::string parameter;
    Value value; ///< Of the parameter's kind.
};

struct FaultRecordDescription {
    std::vector<FaultFieldDescription> fields;
    std::int64_t from = 0;
    std::optional<std::int64_t> until;  ///< Nothing if the record may be present for good.
    std::optional<FaultCondition> when; ///< Without one, the record is present from the beginning.
    std::optional<FaultClearing> clearedBy;

    /// Whether the record may come or go.
    bool Changes() const noexcept { return from > 0 || until || when || clearedBy; }
};

} // namespace vant::host
