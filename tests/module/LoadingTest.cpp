// Loading, unloading, and many threads at once.

#include "framework/interfaces/ClassIds.h"
#include "tests/module/BuiltModule.h"
#include "tests/module/LifeOfEveryClass.h"
#include "tests/module/ModulePresence.h"

#include <condition_variable>
#include <cstddef>
#include <gtest/gtest.h>
#include <mutex>
#include <thread>
#include <vector>

namespace vant {

namespace {

/// Holds threads until a number of them have arrived.
class StartLine {
public:
    explicit StartLine(std::size_t count) : m_missing(count) {}

    void ArriveAndWait() {
        std::unique_lock lock(m_mutex);
        if (--m_missing == 0)
            m_complete.notify_all();
        else
            m_complete.wait(lock, [this] { return m_missing == 0; });
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_complete;
    std::size_t m_missing;
};

/// Runs `work` on that many threads, which all begin together. (A std::barrier of the Windows runtime that we
/// build with sometimes never opens.)
template <class Work>
void OnThreads(std::size_t count, Work work) {
    StartLine start(count);
    std::vector<std::jthread> threads;
    for (std::size_t i = 0; i < count; ++i) {
        threads.emplace_back([&start, &work, i] {
            start.ArriveAndWait();
            work(i);
        });
    }
}

TEST(Loading, UnloadedModule_IsGone_AndLoadsAgain) {
    for (int round = 0; round < 50; ++round) {
        {
            const BuiltModule module;
            EXPECT_TRUE(IsLoaded(BuiltModule::File()));
            LiveOnceInEveryClass(module);
            EXPECT_EQ(module.CanUnloadNow(), S_OK);
        }
        ASSERT_FALSE(IsLoaded(BuiltModule::File())) << "in round " << round;
    }
}

TEST(Loading, UnloadedUntouched_IsGone) {
    { const BuiltModule module; }
    EXPECT_FALSE(IsLoaded(BuiltModule::File()));
}

TEST(Loading, LoadedTwice_SharesObjectsAndLocks) {
    const BuiltModule first;
    const BuiltModule second;
    EXPECT_EQ(first.ClassObject(CLSID_Calculator).Get(), second.ClassObject(CLSID_Calculator).Get());
    CComPtr<IUnknown> object;
    ASSERT_EQ(first.Create(CLSID_Calculator, IID_IUnknown, reinterpret_cast<void**>(&object)), S_OK);
    EXPECT_EQ(second.CanUnloadNow(), S_FALSE);
}

TEST(Loading, FirstRequestsOnManyThreads_GetOneClassObjectPerClass) {
    constexpr std::size_t threads = 8;
    constexpr std::size_t classes = std::size(classTable);
    for (int round = 0; round < 20; ++round) {
        const BuiltModule module; // freshly loaded, so that no class object exists yet
        std::vector<std::vector<IClassFactory*>> seen(threads, std::vector<IClassFactory*>(classes));
        OnThreads(threads, [&](std::size_t thread) {
            // Half of the threads ask from the end of the table, so that different classes meet as well.
            for (std::size_t i = 0; i < classes; ++i) {
                const std::size_t row = thread % 2 == 0 ? i : classes - 1 - i;
                seen[thread][row] = module.ClassObject(*classTable[row].classId).Get();
            }
        });
        for (std::size_t row = 0; row < classes; ++row) {
            EXPECT_NE(seen[0][row], nullptr);
            for (std::size_t thread = 1; thread < threads; ++thread)
                EXPECT_EQ(seen[thread][row], seen[0][row]) << "row " << row << ", thread " << thread;
        }
        ASSERT_EQ(module.CanUnloadNow(), S_OK);
    }
}

TEST(Loading, LivesOnManyThreads_LeaveNoLock) {
    const BuiltModule module;
    OnThreads(8, [&module](std::size_t) {
        for (int i = 0; i < 50; ++i)
            LiveOnceInEveryClass(module);
    });
    EXPECT_EQ(module.CanUnloadNow(), S_OK);
}

TEST(Loading, OneObjectsReferencesOnManyThreads_EndAtOne) {
    const BuiltModule module;
    CComPtr<IUnknown> object;
    ASSERT_EQ(module.Create(CLSID_Calculator, IID_IUnknown, reinterpret_cast<void**>(&object)), S_OK);
    OnThreads(8, [&object](std::size_t) {
        for (int i = 0; i < 2000; ++i)
            CComPtr<IUnknown>(object.Get()).Release();
    });
    EXPECT_EQ(object->AddRef(), 2U);
    EXPECT_EQ(object->Release(), 1U);
}

} // namespace

} // namespace vant
