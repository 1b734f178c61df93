#pragma once

#include "host/record/Value.h"

#include <optional>
#include <string>

namespace vant::host {

/// What a read of a parameter returns.
struct Reading {
    Value value;
    std::optional<std::string> text; ///< Replaces the value's own text.
};

} // namespace vant::host
