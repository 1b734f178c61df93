#include "platform/ComObject.h"

#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace vant {
namespace {

constexpr CLSID CLSID_Thing = {0x5B1F7A52, 0x9A1D, 0x4C6E, {0x8B, 0x0F, 0x21, 0x6C, 0x3E, 0x90, 0xD4, 0x77}};

class Thing : public CComObjectRootEx<CComMultiThreadModel>,
              public CComCoClass<Thing, &CLSID_Thing>,
              public IUnknown {
public:
    Thing() {
        if (constructionFails)
            throw std::bad_alloc();
        ++alive;
    }
    virtual ~Thing() { --alive; }

    inline static int alive = 0;
    inline static bool constructionFails = false;

protected:
    void* FindInterface(REFIID iid) { return iid == IID_IUnknown ? static_cast<IUnknown*>(this) : nullptr; }
};

/// An object without any reference.
CComObject<Thing>* NewThing() {
    CComObject<Thing>* thing = nullptr;
    EXPECT_EQ(S_OK, CComObject<Thing>::CreateInstance(&thing));
    return thing;
}

TEST(CComObject, Created_HoldsAModuleLockUntilItsLastRelease) {
    const LONG before = ModuleLock::Count();
    CComObject<Thing>* const thing = NewThing();
    EXPECT_EQ(before + 1, ModuleLock::Count());
    EXPECT_EQ(1U, thing->AddRef());
    EXPECT_EQ(2U, thing->AddRef());
    EXPECT_EQ(1U, thing->Release());
    EXPECT_EQ(1, Thing::alive);
    EXPECT_EQ(before + 1, ModuleLock::Count());
    EXPECT_EQ(0U, thing->Release());
    EXPECT_EQ(0, Thing::alive);
    EXPECT_EQ(before, ModuleLock::Count());
}

TEST(CComObject, CreatedIntoNull_AnswersPointer) {
    EXPECT_EQ(E_POINTER, CComObject<Thing>::CreateInstance(nullptr));
    EXPECT_EQ(0, Thing::alive);
}

TEST(CComObject, ConstructionFails_AnswersOutOfMemoryAndHoldsNoLock) {
    const LONG before = ModuleLock::Count();
    CComObject<Thing>* thing = reinterpret_cast<CComObject<Thing>*>(&Thing::alive);
    Thing::constructionFails = true;
    EXPECT_EQ(E_OUTOFMEMORY, CComObject<Thing>::CreateInstance(&thing));
    Thing::constructionFails = false;
    EXPECT_EQ(nullptr, thing);
    EXPECT_EQ(before, ModuleLock::Count());
}

TEST(CComObject, AskedForAnInterface_GivesItWithAReference) {
    const CComPtr<Thing> thing(NewThing());
    CComPtr<IUnknown> same;
    ASSERT_EQ(S_OK, thing.QueryInterface(&same));
    EXPECT_EQ(static_cast<IUnknown*>(thing.Get()), same.Get());
    EXPECT_EQ(3U, same->AddRef());
    EXPECT_EQ(2U, same->Release());
}

TEST(CComObject, AskedForAnUnknownInterface_AnswersNoInterfaceAndNull) {
    const CComPtr<Thing> thing(NewThing());
    void* out = thing.Get();
    EXPECT_EQ(E_NOINTERFACE, thing->QueryInterface(IID_IClassFactory, &out));
    EXPECT_EQ(nullptr, out);
    EXPECT_EQ(E_POINTER, thing->QueryInterface(IID_IUnknown, nullptr));
}

TEST(CComObject, ReferencedOnManyThreads_EndsExactlyOnce) {
    const LONG before = ModuleLock::Count();
    CComPtr<Thing> thing(NewThing());
    {
        std::vector<std::jthread> threads;
        for (int i = 0; i < 4; ++i) {
            threads.emplace_back([copy = thing] {
                for (int round = 0; round < 10000; ++round)
                    CComPtr<Thing> another(copy);
            });
        }
        thing.Release();
    }
    EXPECT_EQ(0, Thing::alive);
    EXPECT_EQ(before, ModuleLock::Count());
}

TEST(CComCoClass, GivesItsClassIdentifier) {
    EXPECT_TRUE(Thing::GetObjectCLSID() == CLSID_Thing);
}

} // namespace
} // namespace vant
