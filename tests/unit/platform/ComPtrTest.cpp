#include "platform/ComPtr.h"

#include <gtest/gtest.h>
#include <utility>

namespace vant {
namespace {

/// Counts its references, of which the test holds the first; knows only IUnknown.
class CountedObject : public IUnknown {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
        *out = iid == IID_IUnknown ? this : nullptr;
        if (!*out)
            return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() override { return --references; }

    ULONG references = 1;
};

TEST(CComPtr, Default_HoldsNothing) {
    const CComPtr<IUnknown> pointer;
    EXPECT_EQ(nullptr, pointer.Get());
    EXPECT_FALSE(pointer);
    EXPECT_EQ(sizeof(void*), sizeof(pointer));
}

TEST(CComPtr, MadeOfAPointer_AddsAReferenceForItsLife) {
    CountedObject object;
    {
        const CComPtr<IUnknown> pointer(&object);
        EXPECT_TRUE(pointer);
        EXPECT_EQ(&object, pointer.Get());
        EXPECT_EQ(2U, object.references);
    }
    EXPECT_EQ(1U, object.references);
}

TEST(CComPtr, MadeOfNull_HoldsNothing) {
    const CComPtr<IUnknown> pointer(nullptr);
    const CComPtr<IUnknown> copy(pointer);
    EXPECT_FALSE(pointer);
    EXPECT_FALSE(copy);
}

TEST(CComPtr, Copied_AddsAReferenceAndReleasesTheOneHeldBefore) {
    CountedObject first;
    CountedObject second;
    const CComPtr<IUnknown> source(&first);
    CComPtr<IUnknown> target(&second);
    target = source;
    EXPECT_EQ(&first, target.Get());
    EXPECT_EQ(3U, first.references);
    EXPECT_EQ(1U, second.references);
    const CComPtr<IUnknown> copy(source);
    EXPECT_EQ(4U, first.references);
}

TEST(CComPtr, Moved_HandsItsReferenceOver) {
    CountedObject first;
    CountedObject second;
    CComPtr<IUnknown> source(&first);
    CComPtr<IUnknown> moved(std::move(source));
    EXPECT_EQ(2U, first.references);
    CComPtr<IUnknown> target(&second);
    target = std::move(moved);
    EXPECT_EQ(&first, target.Get());
    EXPECT_FALSE(moved);
    EXPECT_EQ(2U, first.references);
    EXPECT_EQ(1U, second.references);
}

TEST(CComPtr, AssignedToItself_KeepsItsReference) {
    CountedObject object;
    CComPtr<IUnknown> pointer(&object);
    CComPtr<IUnknown>& same = pointer;
    pointer = same;
    EXPECT_EQ(2U, object.references);
    pointer = std::move(same);
    EXPECT_EQ(&object, pointer.Get());
    EXPECT_EQ(2U, object.references);
    pointer = &object;
    EXPECT_EQ(2U, object.references);
}

TEST(CComPtr, AssignedNull_ReleasesItsReference) {
    CountedObject object;
    CComPtr<IUnknown> pointer(&object);
    pointer = nullptr;
    EXPECT_FALSE(pointer);
    EXPECT_EQ(1U, object.references);
}

TEST(CComPtr, AttachedAndDetached_TakesAndGivesAReferenceWithoutCounting) {
    CountedObject first;
    CountedObject second;
    CComPtr<IUnknown> pointer(&first);
    second.AddRef();
    pointer.Attach(&second);
    EXPECT_EQ(1U, first.references);
    EXPECT_EQ(2U, second.references);
    EXPECT_EQ(&second, pointer.Detach());
    EXPECT_FALSE(pointer);
    EXPECT_EQ(2U, second.references);
}

TEST(CComPtr, Released_IsEmptyBeforeTheObjectKnows) {
    struct Watcher : CountedObject {
        ULONG STDMETHODCALLTYPE Release() override {
            wasEmpty = !*holder;
            return CountedObject::Release();
        }
        const CComPtr<IUnknown>* holder = nullptr;
        bool wasEmpty = false;
    };
    Watcher object;
    CComPtr<IUnknown> pointer(&object);
    object.holder = std::addressof(pointer);
    pointer.Release();
    EXPECT_TRUE(object.wasEmpty);
    EXPECT_EQ(1U, object.references);
    pointer.Release();
    EXPECT_EQ(1U, object.references);
}

TEST(CComPtr, Swapped_ExchangesWithoutCounting) {
    CountedObject first;
    CountedObject second;
    CComPtr<IUnknown> a(&first);
    CComPtr<IUnknown> b(&second);
    a.Swap(b);
    EXPECT_EQ(&second, a.Get());
    EXPECT_EQ(&first, b.Get());
    EXPECT_EQ(2U, first.references);
    EXPECT_EQ(2U, second.references);
}

TEST(CComPtr, AddressOfAnEmptyOne_IsForACalleeToFill) {
    CountedObject object;
    {
        CComPtr<IUnknown> pointer;
        ASSERT_EQ(S_OK, object.QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&pointer)));
        EXPECT_EQ(&object, pointer.Get());
        EXPECT_EQ(2U, object.references);
    }
    EXPECT_EQ(1U, object.references);
}

TEST(CComPtr, AskedForAnInterface_PassesTheQuestionOn) {
    CountedObject object;
    const CComPtr<IUnknown> pointer(&object);
    CComPtr<IUnknown> same;
    EXPECT_EQ(S_OK, pointer.QueryInterface(&same));
    EXPECT_EQ(&object, same.Get());
    CComPtr<IClassFactory> factory;
    EXPECT_EQ(E_NOINTERFACE, pointer.QueryInterface(&factory));
    EXPECT_FALSE(factory);
}

TEST(CComPtr, AskedForAnInterfaceWhileEmpty_AnswersPointer) {
    CComPtr<IUnknown> out;
    EXPECT_EQ(E_POINTER, CComPtr<IUnknown>().QueryInterface(&out));
    EXPECT_FALSE(out);
}

} // namespace
} // namespace vant
