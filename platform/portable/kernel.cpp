#include "platform/portable/kernel.h"

#include "platform/portable/testing.h"

#include <atomic>

namespace {
std::atomic<vant::testing::OutputDebugHook> debugHook{nullptr};
}

void OutputDebugStringW(LPCWSTR text) {
    if (const auto hook = debugHook.load(std::memory_order_acquire))
        hook(text);
}

namespace vant::testing {

void SetOutputDebugHook(OutputDebugHook hook) noexcept {
    debugHook.store(hook, std::memory_order_release);
}

} // namespace vant::testing
