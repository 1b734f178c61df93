#pragma once

#include <cstdint>
#include <functional>

namespace vant::host {

/// Returns the time in milliseconds since some fixed moment. It never goes back.
using TimeSource = std::function<std::int64_t()>;

} // namespace vant::host
