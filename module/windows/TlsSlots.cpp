// The compiler's runtime, which is linked into the module, allocates a slot for thread-local storage at the
// first exception and keeps it when the module is unloaded; a process has about a thousand of them. So its
// calls of TlsAlloc come here, and unloading frees the slots.

#include "module/windows/TlsSlots.h"

#include <array>
#include <atomic>
#include <cstddef>

namespace {

using AllocateFunction = DWORD WINAPI();

std::array<std::atomic<DWORD>, 16> slots;
std::atomic<std::size_t> slotCount{0};

DWORD WINAPI AllocateSlot() {
    const auto allocate = reinterpret_cast<AllocateFunction*>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "TlsAlloc")));
    const DWORD slot = allocate();
    const std::size_t number = slot == TLS_OUT_OF_INDEXES ? slots.size() : slotCount++;
    if (number < slots.size())
        slots[number] = slot;
    return slot;
}

} // namespace

// The symbol through which the runtime finds TlsAlloc, in place of the import library's own. The build names
// it, because a 32-bit program decorates it.
extern "C" AllocateFunction* const importOfTlsAlloc __asm__(VANT_IMPORT_OF_TLSALLOC) = AllocateSlot;

namespace vant {

void FreeTlsSlots() noexcept {
    for (std::size_t i = 0; i < slotCount && i < slots.size(); ++i)
        TlsFree(slots[i]);
}

} // namespace vant
