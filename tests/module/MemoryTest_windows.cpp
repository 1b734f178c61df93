#include "framework/interfaces/ClassIds.h"
#include "framework/interfaces/VantCommand.h"
#include "platform/Bstr.h"
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

TEST(Memory, LoadingCreatingAndUnloadingManyTimes_LeavesNoBlockForEachTime) {
    constexpr std::size_t times = 100;
    const auto reload = [] {
        for (std::size_t i = 0; i < times; ++i) {
            const BuiltModule module;
            CComPtr<IVantCommand> command;
            EXPECT_EQ(module.Create(CLSID_Calculator, IID_IVantCommand, reinterpret_cast<void**>(&command)),
                      S_OK);
        }
    };
    reload(); // what the system keeps once
    const std::size_t before = AllocatedBlocks();
    reload();
    EXPECT_LT(AllocatedBlocks(), before + times / 2);
}

/// Has an exception thrown and caught inside the module.
void FailInside(const BuiltModule& module) {
    CComPtr<IVantCommand> command;
    ASSERT_EQ(module.Create(CLSID_CommandTerminator, IID_IVantCommand, reinterpret_cast<void**>(&command)),
              S_OK);
    ASSERT_EQ(command->SetProperty(CComBSTR(L"commandID").Get(), CComBSTR(L"none").Get()), S_OK);
    EXPECT_EQ(command->Execute(), E_FAIL); // It has no controller.
}

/// The slot for thread-local storage that would be allocated next.
DWORD NextTlsSlot() {
    const DWORD slot = TlsAlloc();
    TlsFree(slot);
    return slot;
}

TEST(Memory, FailingInsideAndUnloadingManyTimes_LeavesNoTlsSlotForEachTime) {
    constexpr std::size_t times = 100;
    const auto reload = [] {
        for (std::size_t i = 0; i < times; ++i)
            FailInside(BuiltModule());
    };
    reload();
    const DWORD slot = NextTlsSlot();
    reload();
    EXPECT_EQ(NextTlsSlot(), slot);
}

} // namespace
} // namespace vant
