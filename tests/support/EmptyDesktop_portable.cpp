#include "platform/system.h"
#include "tests/support/EmptyDesktop.h"

#include <gtest/gtest.h>

namespace vant::test {

// On this platform there is a foreground window only if a message presenter is set.
void OnEmptyDesktop(const std::function<void()>& work) {
    ASSERT_EQ(GetForegroundWindow(), nullptr);
    work();
}

} // namespace vant::test
