#pragma once

#include <functional>

namespace vant::test {

/// Runs `work` where no window has the foreground, whatever the user has on the screen, so that a message is
/// dropped and waits for nobody. Returns when it is done. What it throws ends the program.
void OnEmptyDesktop(const std::function<void()>& work);

} // namespace vant::test
