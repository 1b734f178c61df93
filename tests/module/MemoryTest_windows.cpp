#include "tests/module/BuiltModule.h"

#include <gtest/gtest.h>
#include <vector>

namespace vant {
namespace {

/// Number of blocks allocated in all heaps of this process.
std::size_t AllocatedBlocks() {
    std::vector<HANDLE> heaps(64);
    const DWORD count = GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data());
    EXPECT_LE(count, heaps.size());
    heaps.resize(count);
    std::size_t blocks = 0;
    for (const HANDLE heap : heaps) {
        PROCESS_HEAP_ENTRY entry = {};
        while (HeapWalk(heap, &entry))
            blocks += (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) ? 1U : 0U;
    }
    return blocks;
}

TEST(Memory, LoadingAndUnloadingManyTimes_LeavesNoBlockForEachTime) {
    constexpr std::size_t times = 100;
    const auto reload = [] {
        for (std::size_t i = 0; i < times; ++i)
            const BuiltModule module;
    };
    reload(); // what the system keeps once
    const std::size_t before = AllocatedBlocks();
    reload();
    EXPECT_LT(AllocatedBlocks(), before + times / 2);
}

} // namespace
} // namespace vant
