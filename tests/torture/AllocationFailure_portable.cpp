#include "platform/portable/testing.h"
#include "tests/torture/AllocationFailure.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <new>

namespace {

thread_local bool counting = false;
thread_local std::size_t failing = 0;
thread_local std::size_t count = 0;
std::atomic<std::size_t> liveBlocks{0};

/// Counts an allocation; false for the one that is to fail.
bool Permit() noexcept {
    return !counting || ++count != failing;
}

void* Counted(void* block) noexcept {
    if (block)
        ++liveBlocks;
    return block;
}

void Free(void* block) noexcept {
    if (block)
        --liveBlocks;
    std::free(block);
}

void* Allocate(std::size_t size) noexcept {
    return Permit() ? Counted(std::malloc(std::max<std::size_t>(size, 1))) : nullptr;
}

void* Allocate(std::size_t size, std::align_val_t alignment) noexcept {
    const auto unit = static_cast<std::size_t>(alignment);
    return Permit()
               ? Counted(std::aligned_alloc(unit, (std::max<std::size_t>(size, 1) + unit - 1) / unit * unit))
               : nullptr;
}

void* OrThrow(void* block) {
    if (!block)
        throw std::bad_alloc();
    return block;
}

} // namespace

void* operator new(std::size_t size) {
    return OrThrow(Allocate(size));
}
void* operator new[](std::size_t size) {
    return OrThrow(Allocate(size));
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return Allocate(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return Allocate(size);
}
void* operator new(std::size_t size, std::align_val_t alignment) {
    return OrThrow(Allocate(size, alignment));
}
void* operator new[](std::size_t size, std::align_val_t alignment) {
    return OrThrow(Allocate(size, alignment));
}
void operator delete(void* block) noexcept {
    Free(block);
}
void operator delete[](void* block) noexcept {
    Free(block);
}
void operator delete(void* block, std::size_t) noexcept {
    Free(block);
}
void operator delete[](void* block, std::size_t) noexcept {
    Free(block);
}
void operator delete(void* block, std::align_val_t) noexcept {
    Free(block);
}
void operator delete[](void* block, std::align_val_t) noexcept {
    Free(block);
}
void operator delete(void* block, std::size_t, std::align_val_t) noexcept {
    Free(block);
}
void operator delete[](void* block, std::size_t, std::align_val_t) noexcept {
    Free(block);
}
void operator delete(void* block, const std::nothrow_t&) noexcept {
    Free(block);
}
void operator delete[](void* block, const std::nothrow_t&) noexcept {
    Free(block);
}

namespace vant::test {

void PlanAllocationFailure(std::size_t number) noexcept {
    count = 0;
    failing = number;
}

std::size_t AllocationCount() noexcept {
    return count;
}

std::size_t LiveBlockCount() noexcept {
    return liveBlocks;
}

AllocationsCounted::AllocationsCounted() noexcept {
    vant::testing::SetBstrAllocationHook(&Permit);
    counting = true;
}

AllocationsCounted::~AllocationsCounted() {
    counting = false;
    vant::testing::SetBstrAllocationHook(nullptr);
}

} // namespace vant::test
