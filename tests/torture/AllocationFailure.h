#pragma once

#include <cstddef>

namespace vant::test {

// Counts allocations and makes one of them fail: every form of operator new, also when the built module
// calls it, and every BSTR. Portable platform only; one thread at a time counts.

/// The `number`th allocation that is counted from now on fails, the first being 1; 0 lets all succeed.
void PlanAllocationFailure(std::size_t number) noexcept;

/// Allocations counted since then.
std::size_t AllocationCount() noexcept;

/// Blocks of operator new, on all threads and in the built module, too, that have not been deleted yet.
std::size_t LiveBlockCount() noexcept;

/// While one lives, the allocations of the thread that made it are counted.
class AllocationsCounted {
public:
    AllocationsCounted() noexcept;
    ~AllocationsCounted();
    AllocationsCounted(const AllocationsCounted&) = delete;
    AllocationsCounted& operator=(const AllocationsCounted&) = delete;
};

} // namespace vant::test
