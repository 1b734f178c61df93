#pragma once

#include "platform/system.h"

namespace vant {

/// Gives back the slots for thread-local storage that this module's runtime has allocated. The last thing to
/// do before the module goes: no exception may be thrown in it afterwards.
void FreeTlsSlots() noexcept;

} // namespace vant
