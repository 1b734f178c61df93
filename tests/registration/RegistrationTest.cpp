// What the module's own registration writes, and what it removes again.

#include "framework/interfaces/ClassIds.h"
#include "framework/interfaces/VantCommand.h"
#include "platform/Utf8.h"
#include "tests/registration/CopiedModule.h"
#include "tests/registration/RegistrationFixture.h"

#include <iterator>
#include <string>

namespace vant {

HRESULT Registration::CreateByProgId(const std::wstring& progId) {
    CLSID classId;
    if (const HRESULT code = CLSIDFromProgID(progId.c_str(), &classId); FAILED(code))
        return code;
    CComPtr<IVantCommand> command;
    return CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IID_IVantCommand,
                            reinterpret_cast<void**>(&command));
}

namespace {

TEST(ClassTable, HoldsTheClassesThatUsersKnow) {
    ASSERT_EQ(std::size(classTable), StatedClasses().size());
    for (std::size_t i = 0; i < std::size(classTable); ++i) {
        EXPECT_STREQ(classTable[i].name, StatedClasses()[i].name);
        EXPECT_STREQ(classTable[i].clsid, StatedClasses()[i].clsid);
        EXPECT_EQ(classTable[i].resource, StatedClasses()[i].resource);
        CLSID classId;
        ASSERT_EQ(CLSIDFromString(StatedClasses()[i].clsid, &classId), S_OK);
        EXPECT_EQ(classId, *classTable[i].classId) << i;
    }
}

TEST_F(Registration, Registered_HoldsTheStatedEntriesOfEveryClassAndNothingElse) {
    ASSERT_FALSE(StatedClasses().empty());
    EXPECT_EQ(module.RegisterServer(), S_OK);
    EXPECT_EQ(root.OfTheModule(), EntriesOfAll(file));
}

TEST_F(Registration, Unregistered_LeavesTheWholeClassesRootAsItWas) {
    root.Set(L"CLSID\\{00112233-4455-6677-8899-AABBCCDDEEFF}", L"", L"Somebody else's");
    root.Set(L"VantOthers.Thing", L"", L"Somebody else's");
    const Subtree before = root.Whole();
    EXPECT_EQ(module.RegisterServer(), S_OK);
    EXPECT_NE(root.Whole(), before);
    EXPECT_EQ(module.UnregisterServer(), S_OK);
    EXPECT_EQ(root.Whole(), before);
    root.RemoveTree(L"CLSID\\{00112233-4455-6677-8899-AABBCCDDEEFF}");
    root.RemoveTree(L"VantOthers.Thing");
}

TEST_F(Registration, RegisteredTwice_IsTheSameAsOnce) {
    EXPECT_EQ(module.RegisterServer(), S_OK);
    EXPECT_EQ(module.RegisterServer(), S_OK);
    EXPECT_EQ(root.OfTheModule(), EntriesOfAll(file));
}

TEST_F(Registration, UnregisteredTwice_Succeeds) {
    EXPECT_EQ(module.RegisterServer(), S_OK);
    EXPECT_EQ(module.UnregisterServer(), S_OK);
    EXPECT_EQ(module.UnregisterServer(), S_OK);
    EXPECT_EQ(root.OfTheModule(), Subtree());
}

TEST_F(Registration, StaleEntriesOfAClass_AreReplaced) {
    const StatedClass stated = StatedClasses().front();
    const std::wstring classKey = std::wstring(L"CLSID\\") + stated.clsid;
    root.Set(classKey + L"\\Stale\\Below", L"", L"old");
    root.Set(classKey, L"StaleValue", L"old");
    root.Set(classKey + L"\\InprocServer32", L"ThreadingModel", L"Apartment");
    EXPECT_EQ(module.RegisterServer(), S_OK);
    EXPECT_EQ(root.OfTheModule(), EntriesOfAll(file));
}

TEST_F(Registration, EntriesUnderAClassIdentifier_GoWithItWhoeverWroteThem) {
    EXPECT_EQ(module.RegisterServer(), S_OK);
    root.Set(std::wstring(L"CLSID\\") + StatedClasses().front().clsid + L"\\Added", L"", L"later");
    EXPECT_EQ(module.UnregisterServer(), S_OK);
    EXPECT_EQ(root.OfTheModule(), Subtree());
}

TEST_F(Registration, SomebodyElsesKeyUnderAProgId_Stays) {
    const std::wstring progId = ProgId(StatedClasses().front());
    EXPECT_EQ(module.RegisterServer(), S_OK);
    root.Set(progId + L"\\Foreign", L"", L"theirs");
    EXPECT_EQ(module.UnregisterServer(), S_OK);
    Subtree left = root.OfTheModule();
    EXPECT_EQ(left[progId + L"\\Foreign"][L""], L"theirs");
    EXPECT_FALSE(left.contains(progId + L"\\CLSID"));
    EXPECT_FALSE(left.contains(progId + L".1"));
    root.RemoveTree(progId);
}

TEST_F(Registration, EveryClass_IsCreatableByBothProgIdsWhileRegistered) {
    EXPECT_EQ(module.RegisterServer(), S_OK);
    for (const StatedClass& stated : StatedClasses()) {
        EXPECT_EQ(CreateByProgId(ProgId(stated)), S_OK) << stated.resource;
        EXPECT_EQ(CreateByProgId(ProgId(stated) + L".1"), S_OK) << stated.resource;
    }
    EXPECT_EQ(module.UnregisterServer(), S_OK);
    for (const StatedClass& stated : StatedClasses()) {
        EXPECT_EQ(CreateByProgId(ProgId(stated)), CO_E_CLASSSTRING) << stated.resource;
        CLSID classId;
        ASSERT_EQ(CLSIDFromString(stated.clsid, &classId), S_OK);
        CComPtr<IUnknown> object;
        EXPECT_EQ(CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown,
                                   reinterpret_cast<void**>(&object)),
                  REGDB_E_CLASSNOTREG)
            << stated.resource;
    }
}

TEST_F(Registration, FolderWithQuoteBlanksAndForeignLetters_IsWrittenAsItIs) {
    const CopiedModule copied(PathFromUtf8("it's a {Gr\u00F6\u00DFe} %MODULE% \u4E2D\u0416"));
    {
        const BuiltModule other(copied.file);
        EXPECT_EQ(other.RegisterServer(), S_OK);
        EXPECT_EQ(root.OfTheModule(), EntriesOfAll(copied.file));
        for (const StatedClass& stated : StatedClasses())
            EXPECT_EQ(CreateByProgId(ProgId(stated)), S_OK) << stated.resource;
        EXPECT_EQ(other.UnregisterServer(), S_OK);
    }
    UnloadCreated(); // so that the copy's file can be removed
}

TEST_F(Registration, PathLongerThan260Characters_IsWrittenWhole) {
    const CopiedModule copied(LongFolder());
    ASSERT_GT(copied.file.wstring().size(), 400U);
    const BuiltModule other(copied.file);
    EXPECT_EQ(other.RegisterServer(), S_OK);
    // The type library stands there under a short path: the system would not find it under the long one.
    EXPECT_EQ(ClassEntries(root.OfTheModule()), ClassEntries(EntriesOfAll(copied.file)));
    EXPECT_EQ(other.UnregisterServer(), S_OK);
    EXPECT_EQ(root.OfTheModule(), Subtree());
}

} // namespace

} // namespace vant
