#pragma once

#include "host/engine/EngineDescription.h"
#include "host/services/HandOut.h"

namespace vant {

/// Hands out what a step of the protocol source chain leads to; codeStepFailed, null out, where the engine
/// lets this step fail.
template <class Object, class Interface>
HRESULT HandOutStep(const EngineDescription& engine, ProtocolStep step, Object* object, Interface** out) {
    if (!out || engine.protocolFails != step)
        return HandOut(object, out);
    *out = nullptr;
    return codeStepFailed;
}

} // namespace vant
