#include "platform/system.h"
#include "tests/support/EmptyDesktop.h"

#include <gtest/gtest.h>
#include <thread>

namespace vant::test {

// A desktop belongs to a thread, and a thread that has windows keeps the one it has.
void OnEmptyDesktop(const std::function<void()>& work) {
    const HDESK desktop = CreateDesktopW(L"empty", nullptr, nullptr, 0, GENERIC_ALL, nullptr);
    ASSERT_NE(desktop, nullptr);
    std::thread([&] {
        ASSERT_TRUE(SetThreadDesktop(desktop));
        ASSERT_EQ(GetForegroundWindow(), nullptr);
        work();
    }).join();
    CloseDesktop(desktop);
}

} // namespace vant::test
