#pragma once

#include "framework/interfaces/HostServices.h"

namespace vant {

/// Tells the controller that the persistent command `self` has been asked to stop. Answers what failed:
/// asking `self` for IVantPersistentCommand, or the controller; E_POINTER where there is none. `self` is held
/// meanwhile.
HRESULT ReportStop(IUnknown* self, IVantController* controller) noexcept;

} // namespace vant
