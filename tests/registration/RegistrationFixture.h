#pragma once

#include "tests/module/BuiltModule.h"
#include "tests/registration/ClassesRoot.h"
#include "tests/registration/StatedEntries.h"

#include <gtest/gtest.h>

namespace vant {

/// The built module, not registered, beside a classes root that holds nothing of it; nothing is left behind.
/// The program uses components meanwhile.
class Registration : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_MULTITHREADED)));
        ASSERT_EQ(module.UnregisterServer(), S_OK);
        ASSERT_EQ(root.OfTheModule(), Subtree());
    }
    void TearDown() override {
        EXPECT_EQ(module.UnregisterServer(), S_OK);
        EXPECT_EQ(root.OfTheModule(), Subtree());
        CoUninitialize();
    }

    /// What CLSIDFromProgID returns, then CoCreateInstance.
    static HRESULT CreateByProgId(const std::wstring& progId);

    /// Unloads the modules that were loaded for a class.
    static void UnloadCreated() {
        CoUninitialize();
        ASSERT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_MULTITHREADED)));
    }

    ClassesRoot root;
    BuiltModule module;
    const std::filesystem::path file = BuiltModule::File();
};

} // namespace vant
