#pragma once

#include "framework/interfaces/HostServices.h"

namespace vant {

/// Tells the controller that the persistent command `self` has been asked to stop. Returns the code of the
/// step that failed: asking `self` for IVantPersistentCommand, or calling the controller (E_POINTER without
/// one). Holds a reference to `self` during the call.
HRESULT ReportStop(IUnknown* self, IVantController* controller) noexcept;

} // namespace vant
