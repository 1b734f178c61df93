// The results of the exported entry points and of the class objects.

#include "framework/interfaces/ClassIds.h"
#include "framework/interfaces/VantCommand.h"
#include "tests/module/BuiltModule.h"

#include <cstring>
#include <gtest/gtest.h>
#include <ostream>
#include <vector>

namespace vant {

namespace {

constexpr CLSID unknownClass = {0x01234567, 0x89AB, 0xCDEF, {1, 2, 3, 4, 5, 6, 7, 8}};

class EntryPoints : public testing::Test {
protected:
    void TearDown() override { EXPECT_EQ(module.CanUnloadNow(), S_OK) << "something is still locked"; }

    BuiltModule module;
};

/// A pointer that is not null and that nobody may follow, to see that it is overwritten.
void* Garbage() {
    static int anything = 0;
    return &anything;
}

TEST_F(EntryPoints, GetClassObject_UnknownClass_ReturnsNotAvailableAndNull) {
    void* out = Garbage();
    EXPECT_EQ(module.GetClassObject(unknownClass, IID_IClassFactory, &out), static_cast<HRESULT>(0x80040111));
    EXPECT_EQ(out, nullptr);
}

TEST_F(EntryPoints, GetClassObject_UnknownInterface_ReturnsNoInterfaceAndNull) {
    void* out = Garbage();
    EXPECT_EQ(module.GetClassObject(CLSID_Calculator, IID_IVantCommand, &out), E_NOINTERFACE);
    EXPECT_EQ(out, nullptr);
}

TEST_F(EntryPoints, GetClassObject_NullOut_ReturnsPointerForAnyClass) {
    EXPECT_EQ(module.GetClassObject(CLSID_Calculator, IID_IClassFactory, nullptr), E_POINTER);
    EXPECT_EQ(module.GetClassObject(unknownClass, IID_IClassFactory, nullptr), E_POINTER);
}

TEST_F(EntryPoints, GetClassObject_ASecondTime_ReturnsTheSameObject) {
    const auto first = module.ClassObject(CLSID_Calculator);
    const auto second = module.ClassObject(CLSID_Calculator);
    const auto other = module.ClassObject(CLSID_DataStoreWriter);
    ASSERT_TRUE(first);
    EXPECT_EQ(first.Get(), second.Get());
    EXPECT_NE(first.Get(), other.Get());
    CComPtr<IUnknown> identity;
    EXPECT_EQ(module.GetClassObject(CLSID_Calculator, IID_IUnknown, reinterpret_cast<void**>(&identity)),
              S_OK);
    EXPECT_EQ(identity.Get(), static_cast<IUnknown*>(first.Get()));
}

TEST_F(EntryPoints, GetClassObject_ReleasedByEveryCaller_StaysForTheNext) {
    IClassFactory* const first = module.ClassObject(CLSID_Calculator).Get();
    EXPECT_EQ(module.ClassObject(CLSID_Calculator).Get(), first);
}

TEST_F(EntryPoints, ClassObject_Held_DoesNotKeepTheModule) {
    const auto factory = module.ClassObject(CLSID_Calculator);
    EXPECT_EQ(module.CanUnloadNow(), S_OK);
}

TEST_F(EntryPoints, ClassObject_NullOut_ReturnsPointer) {
    const auto factory = module.ClassObject(CLSID_Calculator);
    EXPECT_EQ(factory->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
    EXPECT_EQ(factory->QueryInterface(IID_IVantCommand, nullptr), E_POINTER);
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_IVantCommand, nullptr), E_POINTER);
    EXPECT_EQ(factory->CreateInstance(factory.Get(), IID_IVantCommand, nullptr), E_POINTER);
}

TEST_F(EntryPoints, ClassObject_UnknownInterface_ReturnsNoInterfaceAndNull) {
    const auto factory = module.ClassObject(CLSID_Calculator);
    void* out = Garbage();
    EXPECT_EQ(factory->QueryInterface(IID_IVantCommand, &out), E_NOINTERFACE);
    EXPECT_EQ(out, nullptr);
}

TEST_F(EntryPoints, CreateInstance_EveryClass_CreatesItsOwnCommand) {
    for (const ClassRow& row : classTable) {
        SCOPED_TRACE(row.name);
        CComPtr<IVantCommand> first;
        CComPtr<IVantCommand> second;
        EXPECT_EQ(module.Create(*row.classId, IID_IVantCommand, reinterpret_cast<void**>(&first)), S_OK);
        EXPECT_EQ(module.Create(*row.classId, IID_IUnknown, reinterpret_cast<void**>(&second)), S_OK);
        EXPECT_TRUE(first);
        EXPECT_TRUE(second);
        EXPECT_NE(first.Get(), second.Get());
    }
}

TEST_F(EntryPoints, CreateInstance_InsideAnotherObject_IsRefused) {
    const auto factory = module.ClassObject(CLSID_Calculator);
    for (const IID* iid : {&IID_IUnknown, &IID_IVantCommand}) {
        void* out = Garbage();
        EXPECT_EQ(factory->CreateInstance(factory.Get(), *iid, &out), static_cast<HRESULT>(0x80040110));
        EXPECT_EQ(out, nullptr);
    }
    EXPECT_EQ(module.CanUnloadNow(), S_OK);
}

TEST_F(EntryPoints, CreateInstance_UnknownInterface_ReturnsNoInterfaceAndKeepsNoObject) {
    for (const IID* iid : {&IID_IVantPersistentCommand, &IID_IDispatch, &IID_IClassFactory}) {
        void* out = Garbage();
        EXPECT_EQ(module.Create(CLSID_Calculator, *iid, &out), E_NOINTERFACE);
        EXPECT_EQ(out, nullptr);
        EXPECT_EQ(module.CanUnloadNow(), S_OK);
    }
}

TEST_F(EntryPoints, CanUnloadNow_LiveObject_ReturnsFalseUntilItsLastRelease) {
    EXPECT_EQ(module.CanUnloadNow(), S_OK);
    for (const ClassRow& row : classTable) {
        SCOPED_TRACE(row.name);
        CComPtr<IUnknown> object;
        ASSERT_EQ(module.Create(*row.classId, IID_IUnknown, reinterpret_cast<void**>(&object)), S_OK);
        EXPECT_EQ(module.CanUnloadNow(), S_FALSE);
        CComPtr<IUnknown> again = object;
        object.Release();
        EXPECT_EQ(module.CanUnloadNow(), S_FALSE);
        again.Release();
        EXPECT_EQ(module.CanUnloadNow(), S_OK);
    }
}

TEST_F(EntryPoints, LockServer_KeepsTheModuleUntilAsManyUnlocks) {
    const auto factory = module.ClassObject(CLSID_Calculator);
    const auto other = module.ClassObject(CLSID_DataStoreWriter);
    EXPECT_EQ(factory->LockServer(TRUE), S_OK);
    EXPECT_EQ(other->LockServer(TRUE), S_OK);
    EXPECT_EQ(module.CanUnloadNow(), S_FALSE);
    EXPECT_EQ(factory->LockServer(FALSE), S_OK);
    EXPECT_EQ(module.CanUnloadNow(), S_FALSE);
    EXPECT_EQ(factory->LockServer(FALSE), S_OK);
    EXPECT_EQ(module.CanUnloadNow(), S_OK);
}

} // namespace

} // namespace vant
