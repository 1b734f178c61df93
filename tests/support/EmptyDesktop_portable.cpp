#include "platform/system.h"
#include "tests/support/EmptyDesktop.h"

#include <gtest/gtest.h>

namespace vant::test {

// Only a presenter of messages gives this platform a foreground window.
void OnEmptyDesktop(const std::function<void()>& work) {
    ASSERT_EQ(GetForegroundWindow(), nullptr);
    work();
}

} // namespace vant::test
