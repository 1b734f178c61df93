#pragma once

#include "host/engine/model/EngineDescription.h"
#include "host/object/HandOut.h"

namespace vant::host {

/// Hands out what a step of the protocol source chain leads to; E_FAIL, null out, where the engine
/// lets this step fail.
template <class Object, class Interface>
HRESULT HandOutStep(const EngineDescription& engine, ProtocolStep step, Object* object, Interface** out) {
    if (!out || engine.protocolFails != step)
        return HandOut(object, out);
    *out = nullptr;
    return E_FAIL;
}

} // namespace vant::host
