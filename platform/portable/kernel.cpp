#include "platform/portable/kernel.h"

#include "platform/Waiting.h"
#include "platform/portable/testing.h"

#include <atomic>
#include <new>

namespace {

std::atomic<vant::testing::OutputDebugHook> debugHook{nullptr};

vant::waiting::Event* EventOf(HANDLE handle) {
    return static_cast<vant::waiting::Event*>(handle);
}

std::int64_t LengthOf(DWORD milliseconds) {
    return milliseconds == INFINITE ? vant::waiting::Clock::never : std::int64_t{milliseconds};
}

} // namespace

void OutputDebugStringW(LPCWSTR text) {
    if (const auto hook = debugHook.load(std::memory_order_acquire))
        hook(text);
}

HANDLE CreateEventW(SECURITY_ATTRIBUTES*, BOOL manualReset, BOOL initialState, LPCWSTR name) {
    return name ? nullptr
                : new (std::nothrow) vant::waiting::Event(manualReset != FALSE, initialState != FALSE);
}

BOOL SetEvent(HANDLE event) {
    if (event)
        vant::waiting::TheClock().Set(*EventOf(event));
    return event ? TRUE : FALSE;
}

BOOL ResetEvent(HANDLE event) {
    if (event)
        vant::waiting::TheClock().Reset(*EventOf(event));
    return event ? TRUE : FALSE;
}

BOOL CloseHandle(HANDLE event) {
    delete EventOf(event);
    return event ? TRUE : FALSE;
}

DWORD WaitForSingleObject(HANDLE event, DWORD milliseconds) {
    if (!event)
        return WAIT_FAILED;
    return vant::waiting::TheClock().Wait(EventOf(event), LengthOf(milliseconds)) ? WAIT_OBJECT_0
                                                                                  : WAIT_TIMEOUT;
}

void Sleep(DWORD milliseconds) {
    vant::waiting::TheClock().Wait(nullptr, LengthOf(milliseconds));
}

namespace vant::testing {

std::size_t LiveEventCount() noexcept {
    return waiting::LiveEventCount();
}

void SetOutputDebugHook(OutputDebugHook hook) noexcept {
    debugHook.store(hook, std::memory_order_release);
}

} // namespace vant::testing
