#include "platform/TimeRedirection.h"

#include "platform/Clock.h"

namespace vant {

// Every wait goes through the clock from the start.

void RedirectProgram() noexcept {}

void TakeTimeFromHere(const void*) noexcept {}

} // namespace vant
