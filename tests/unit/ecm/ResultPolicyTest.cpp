#include "ecm/ResultPolicy.h"

#include <cstddef>
#include <cstring>
#include <exception>
#include <gtest/gtest.h>
#include <limits>
#include <type_traits>

namespace vant {

namespace {

/// Assigns and returns the exception that is thrown; fails the test if none is.
CComErrorHandlerException Thrown(CCheckedResult& result, HRESULT code) {
    try {
        result = code;
    } catch (const CComErrorHandlerException& exception) {
        return exception;
    }
    ADD_FAILURE() << "nothing was thrown";
    return {S_OK, 0};
}

/// The field of type `Field` that stands `offset` bytes behind the virtual function table of `object`.
template <class Field, class Object>
Field FieldAt(const Object& object, std::size_t offset) {
    Field field{};
    std::memcpy(&field, reinterpret_cast<const std::byte*>(&object) + sizeof(void*) + offset, sizeof field);
    return field;
}

TEST(ResultPolicy, FreshResult_ReadsFail) {
    const CCheckedResult result;
    EXPECT_EQ(E_FAIL, result);
}

TEST(ResultPolicy, SuccessCode_IsStoredAndThrowsNothing) {
    CCheckedResult result;
    for (const HRESULT code : {S_OK, S_FALSE, HRESULT{2}, std::numeric_limits<HRESULT>::max()}) {
        EXPECT_NO_THROW(result = code);
        EXPECT_EQ(code, result);
    }
}

TEST(ResultPolicy, Failure_IsStoredAndThrown) {
    CCheckedResult result;
    EXPECT_EQ(E_OUTOFMEMORY, Thrown(result, E_OUTOFMEMORY).Code());
    EXPECT_EQ(E_OUTOFMEMORY, result);
}

TEST(ResultPolicy, EveryNegativeCode_IsAFailure) {
    for (const HRESULT code : {HRESULT{-1}, std::numeric_limits<HRESULT>::min()}) {
        CCheckedResult result;
        EXPECT_EQ(code, Thrown(result, code).Code());
    }
}

TEST(ResultPolicy, ThrownException_CarriesCodeAndNothingElse) {
    CCheckedResult result;
    const CComErrorHandlerException exception = Thrown(result, E_POINTER);
    EXPECT_EQ(E_POINTER, exception.Code());
    EXPECT_EQ(0u, exception.SecondCode());
    EXPECT_EQ(0u, exception.ThirdCode());
    EXPECT_EQ(L"", exception.Message());
    EXPECT_EQ(0u, exception.TrailingValue());
}

TEST(ResultPolicy, FailureAfterSuccesses_Throws) {
    CCheckedResult result;
    result = S_OK;
    result = S_FALSE;
    EXPECT_EQ(E_UNEXPECTED, Thrown(result, E_UNEXPECTED).Code());
}

TEST(ResultPolicy, SecondFailure_IsStoredButNotThrown) {
    CCheckedResult result;
    Thrown(result, E_UNEXPECTED);
    EXPECT_NO_THROW(result = E_POINTER);
    EXPECT_EQ(E_POINTER, result);
}

TEST(ResultPolicy, SuccessAfterThrow_IsStoredAndDoesNotArmItAgain) {
    CCheckedResult result;
    Thrown(result, E_UNEXPECTED);
    result = S_OK;
    EXPECT_EQ(S_OK, result);
    EXPECT_NO_THROW(result = E_FAIL);
}

TEST(ResultPolicy, AssignmentWhileUnwinding_LetsTheFirstFailureThrough) {
    struct CleansUp {
        CCheckedResult& result;
        ~CleansUp() { result = E_POINTER; }
    };
    CCheckedResult result;
    try {
        const CleansUp cleansUp{result};
        result = E_UNEXPECTED;
        ADD_FAILURE() << "nothing was thrown";
    } catch (const CComErrorHandlerException& exception) {
        EXPECT_EQ(E_UNEXPECTED, exception.Code());
    }
    EXPECT_EQ(E_POINTER, result);
}

TEST(ResultPolicy, TwoResults_ThrowIndependently) {
    CCheckedResult first;
    CCheckedResult second;
    Thrown(first, E_FAIL);
    EXPECT_EQ(E_FAIL, Thrown(second, E_FAIL).Code());
}

TEST(ResultPolicy, Assignment_CanBeChained) {
    CCheckedResult result;
    EXPECT_EQ(&result, &(result = S_FALSE));
}

TEST(ResultPolicy, Result_IsATriggeredAssignmentWithVirtualDestructor) {
    using Base = TriggeredAssignmentPolicy<HRESULTPolicy<ErrorCallbackClass>>;
    static_assert(std::is_same_v<CCheckedResult, CSmartResult<HRESULTPolicy<ErrorCallbackClass>>>);
    static_assert(std::is_base_of_v<Base, CCheckedResult>);
    EXPECT_TRUE(std::is_polymorphic_v<CCheckedResult>);
    EXPECT_TRUE(std::has_virtual_destructor_v<Base>);
    EXPECT_TRUE(std::has_virtual_destructor_v<CCheckedResult>);
}

TEST(ResultPolicy, ResultFields_AreTriggeredContextCodeResult) {
    CCheckedResult result;
    EXPECT_EQ(sizeof(void*) + 12 + (sizeof(void*) == 8 ? 4 : 0), sizeof result);
    EXPECT_FALSE(FieldAt<bool>(result, 0));
    EXPECT_EQ(0u, FieldAt<std::uint32_t>(result, 4));
    EXPECT_EQ(E_FAIL, FieldAt<HRESULT>(result, 8));
    Thrown(result, E_POINTER);
    EXPECT_TRUE(FieldAt<bool>(result, 0));
    EXPECT_EQ(0u, FieldAt<std::uint32_t>(result, 4));
    EXPECT_EQ(E_POINTER, FieldAt<HRESULT>(result, 8));
}

TEST(ComErrorHandlerException, Class_IsPolymorphicAndCopyable) {
    EXPECT_TRUE(std::is_polymorphic_v<CComErrorHandlerException>);
    EXPECT_TRUE(std::has_virtual_destructor_v<CComErrorHandlerException>);
    EXPECT_TRUE(std::is_copy_constructible_v<CComErrorHandlerException>);
}

TEST(ComErrorHandlerException, Class_IsNoStandardException) {
    EXPECT_FALSE((std::is_base_of_v<std::exception, CComErrorHandlerException>));
}

TEST(ComErrorHandlerException, Copy_CarriesEveryField) {
    const CComErrorHandlerException original(E_OUTOFMEMORY, 7);
    const CComErrorHandlerException copy = original;
    EXPECT_EQ(E_OUTOFMEMORY, copy.Code());
    EXPECT_EQ(0u, copy.SecondCode());
    EXPECT_EQ(7u, copy.ThirdCode());
    EXPECT_EQ(L"", copy.Message());
    EXPECT_EQ(0u, copy.TrailingValue());
}

TEST(ComErrorHandlerException, Fields_AreThreeCodesMessageTrailingValue) {
    struct SameFields {
        virtual ~SameFields() = default;
        HRESULT code = 0;
        std::uint32_t second = 0;
        std::uint32_t third = 0;
        std::wstring message;
        std::uint32_t trailing = 0;
    };
    EXPECT_EQ(sizeof(SameFields), sizeof(CComErrorHandlerException));
    const CComErrorHandlerException exception(E_OUTOFMEMORY, 7);
    EXPECT_EQ(E_OUTOFMEMORY, FieldAt<HRESULT>(exception, 0));
    EXPECT_EQ(0u, FieldAt<std::uint32_t>(exception, 4));
    EXPECT_EQ(7u, FieldAt<std::uint32_t>(exception, 8));
}

} // namespace

} // namespace vant
