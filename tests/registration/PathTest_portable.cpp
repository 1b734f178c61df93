// Loading the modules of registered classes. Windows itself loads no component from a path of more than 260
// characters; the portable build does.

#include "tests/registration/CopiedModule.h"
#include "tests/registration/RegistrationFixture.h"

#include <dlfcn.h>

namespace vant {

namespace {

TEST_F(Registration, ModuleOnALongPath_IsCreatable) {
    const CopiedModule copied(LongFolder());
    {
        const BuiltModule other(copied.file);
        EXPECT_EQ(other.RegisterServer(), S_OK);
        for (const StatedClass& stated : StatedClasses())
            EXPECT_EQ(CreateByProgId(ProgId(stated)), S_OK) << stated.resource;
        EXPECT_EQ(other.UnregisterServer(), S_OK);
    }
}

bool IsLoaded(const std::filesystem::path& library) {
    void* const found = dlopen(library.c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (found)
        dlclose(found);
    return found != nullptr;
}

TEST_F(Registration, LastCoUninitialize_UnloadsTheModulesThatWereLoadedForClasses) {
    const CopiedModule copied("unloaded");
    ASSERT_EQ(BuiltModule(copied.file).RegisterServer(), S_OK);
    ASSERT_FALSE(IsLoaded(copied.file));
    ASSERT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_FALSE);
    EXPECT_EQ(CreateByProgId(ProgId(StatedClasses().front())), S_OK);
    CoUninitialize();
    EXPECT_TRUE(IsLoaded(copied.file)) << "the fixture still uses components";
    UnloadCreated();
    EXPECT_FALSE(IsLoaded(copied.file));
}

} // namespace

} // namespace vant
