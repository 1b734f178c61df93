// What the module does when memory runs out, and what it leaves behind. Only the portable platform lets a
// test refuse the module's allocations and count its strings.

#include "framework/interfaces/ClassIds.h"
#include "framework/interfaces/VantCommand.h"
#include "platform/portable/testing.h"
#include "tests/module/BuiltModule.h"
#include "tests/module/LifeOfEveryClass.h"
#include "tests/torture/AllocationFailure.h"

#include <gtest/gtest.h>
#include <iterator>

namespace vant {

namespace {

/// The result of an operation whose first allocation fails.
template <class Operation>
HRESULT WithoutMemory(Operation operation) {
    test::PlanAllocationFailure(1);
    const test::AllocationsCounted counted;
    const HRESULT code = operation();
    EXPECT_EQ(test::AllocationCount(), 1U) << "it must not go on after the failure";
    return code;
}

TEST(ModuleMemory, ReloadedManyTimes_LeavesNoString) {
    const std::size_t before = testing::LiveBstrCount();
    for (int round = 0; round < 20; ++round)
        LiveOnceInEveryClass(BuiltModule());
    EXPECT_EQ(testing::LiveBstrCount(), before);
}

TEST(ModuleMemory, Unloading_ReleasesTheClassObjects) {
    const auto requestAll = [] {
        const BuiltModule module;
        const std::size_t loaded = test::LiveBlockCount();
        for (const ClassRow& row : classTable)
            EXPECT_TRUE(module.ClassObject(*row.classId));
        EXPECT_EQ(test::LiveBlockCount(), loaded + std::size(classTable));
    };
    requestAll(); // what the first use of the module leaves in the process is not counted
    const std::size_t before = test::LiveBlockCount();
    requestAll();
    EXPECT_EQ(test::LiveBlockCount(), before);
}

TEST(ModuleMemory, NoMemoryForTheClassObject_ReturnsOutOfMemory_AndTheNextRequestSucceeds) {
    for (const ClassRow& row : classTable) {
        const BuiltModule module; // freshly loaded, so that no class object exists yet
        void* out = &out;
        const HRESULT code = WithoutMemory([&] {
            return module.GetClassObject(*row.classId, IID_IClassFactory, &out); //
        });
        EXPECT_EQ(code, static_cast<HRESULT>(0x8007000E));
        EXPECT_EQ(out, nullptr);
        EXPECT_TRUE(module.ClassObject(*row.classId));
        EXPECT_EQ(module.CanUnloadNow(), S_OK);
    }
}

TEST(ModuleMemory, NoMemoryForTheObject_ReturnsOutOfMemory_AndLeavesNoLock) {
    const BuiltModule module;
    for (const ClassRow& row : classTable) {
        const auto factory = module.ClassObject(*row.classId);
        void* out = &out;
        const HRESULT code = WithoutMemory([&] {
            return factory->CreateInstance(nullptr, IID_IVantCommand, &out); //
        });
        EXPECT_EQ(code, static_cast<HRESULT>(0x8007000E));
        EXPECT_EQ(out, nullptr);
        EXPECT_EQ(module.CanUnloadNow(), S_OK);
    }
}

} // namespace

} // namespace vant
