#pragma once

namespace vant {

/// Makes the waits of this program go through the clock of platform/Waiting.h, if they do not already. No
/// other thread may wait in the meantime.
void RedirectProgram() noexcept;

} // namespace vant
