#pragma once

#include <functional>

namespace vant::test {

/// Runs `work` while no window is in the foreground, whatever is on the user's screen, so that a message is
/// dropped without waiting. Returns when it is done. What it throws ends the program.
void OnEmptyDesktop(const std::function<void()>& work);

} // namespace vant::test
