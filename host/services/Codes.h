#pragma once

#include "platform/system.h"

namespace vant {

/// What the host answers where a named thing does not exist: a data-store entry, a parameter, a running
/// command. (The system's "element not found".)
inline constexpr HRESULT codeNotFound = static_cast<HRESULT>(0x80070490);

/// What the host answers to a request to run a command, to start a thread or to write a parameter once the
/// procedure has begun to end. (The system's "operation aborted".)
inline constexpr HRESULT codeAborted = static_cast<HRESULT>(0x80004004);

/// What the simulated engine answers to a read of a parameter whose reads fail. (The system's "read fault".)
inline constexpr HRESULT codeReadFailed = static_cast<HRESULT>(0x8007001E);

/// What the simulated engine answers to a write of a value outside the parameter's limits. (The system's "out
/// of bounds".)
inline constexpr HRESULT codeOutOfLimits = static_cast<HRESULT>(0x8000000B);

/// What a step of the protocol source chain answers that the engine's description lets fail.
inline constexpr HRESULT codeStepFailed = E_FAIL;

} // namespace vant
