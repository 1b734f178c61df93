#pragma once

#include "host/object/HostObject.h"

namespace vant::host {

/// A service that commands request and hold, but never call.
class UnusedService final : public HostObject<IUnknown> {
public:
    UnusedService(CallGate& gate, const char* name) : HostObject(gate, name) {}
};

} // namespace vant::host
