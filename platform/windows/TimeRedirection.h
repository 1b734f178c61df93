#pragma once

#include "platform/system.h"

namespace vant {

/// From now on the events, waits and sleeps of a loaded module go through the clock of platform/Waiting.h
/// instead of the system's: its import table is made to point there. Handles that the system made stay the
/// system's. Doing it again changes nothing; the first time no thread may run in the module.
void RedirectTime(HMODULE module);

} // namespace vant
