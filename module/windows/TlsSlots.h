#pragma once

#include "platform/system.h"

namespace vant {

/// Frees the slots for thread-local storage that this module's runtime has allocated. Must be the last step
/// before the module is unloaded: no exception may be thrown in it afterwards.
void FreeTlsSlots() noexcept;

} // namespace vant
