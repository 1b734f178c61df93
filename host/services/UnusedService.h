#pragma once

#include "host/object/HostObject.h"

#include <string>
#include <utility>

namespace vant::host {

/// A service that commands ask for and hold, but never call.
class UnusedService final : public HostObject<IUnknown> {
public:
    UnusedService(Journal& journal, std::string name) : HostObject(journal, std::move(name)) {}
};

} // namespace vant::host
