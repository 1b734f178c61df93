// When the portable platform loads and unloads the modules of classes.

#include "tests/module/ModulePresence.h"
#include "tests/registration/CopiedModule.h"
#include "tests/registration/RegistrationFixture.h"

namespace vant {

namespace {

HRESULT AskForTheClassObject(const StatedClass& stated) {
    CLSID classId{};
    EXPECT_EQ(CLSIDFromProgID(ProgId(stated).c_str(), &classId), S_OK);
    CComPtr<IClassFactory> factory;
    return CoGetClassObject(classId, CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory,
                            reinterpret_cast<void**>(&factory));
}

TEST_F(Registration, ClassObject_IsRefusedUntilComponentsAreInitialised) {
    ASSERT_EQ(module.RegisterServer(), S_OK);
    const StatedClass& stated = StatedClasses().front();
    CoUninitialize();
    EXPECT_EQ(AskForTheClassObject(stated), CO_E_NOTINITIALIZED);
    ASSERT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
    EXPECT_EQ(AskForTheClassObject(stated), S_OK);
}

TEST_F(Registration, LastUninitialise_UnloadsTheModulesOfClasses) {
    const CopiedModule copied(LongFolder());
    {
        const BuiltModule other(copied.file);
        ASSERT_EQ(other.RegisterServer(), S_OK);
    }
    EXPECT_FALSE(IsLoaded(copied.file));
    EXPECT_EQ(AskForTheClassObject(StatedClasses().front()), S_OK);
    EXPECT_TRUE(IsLoaded(copied.file));
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_FALSE);
    CoUninitialize(); // not the last one
    EXPECT_TRUE(IsLoaded(copied.file));
    CoUninitialize();
    EXPECT_FALSE(IsLoaded(copied.file));
    ASSERT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
}

} // namespace

} // namespace vant
