#pragma once

#include "host/engine/model/EngineDescription.h"
#include "host/object/HandOut.h"

namespace vant::host {

/// Hands out the object that a step of the chain of protocol sources leads to. E_FAIL, null out, if the
/// engine's description has this step fail.
template <class Object, class Interface>
HRESULT HandOutStep(const EngineDescription& engine, ProtocolStep step, Object* object, Interface** out) {
    if (!out || engine.protocolFails != step)
        return HandOut(object, out);
    *out = nullptr;
    return E_FAIL;
}

} // namespace vant::host
