#include "framework/ResultFromCaughtException.h"

#include "ecm/ResultPolicy.h"
#include "platform/ComException.h"

#include <gtest/gtest.h>
#include <new>
#include <stdexcept>

namespace vant {

namespace {

template <class Error>
HRESULT CodeOf(const Error& error) {
    try {
        throw error;
    } catch (...) {
        return ResultFromCaughtException();
    }
}

TEST(ResultFromCaughtException, FailedHostCall_HasItsCode) {
    try {
        CCheckedResult result;
        result = E_ACCESSDENIED;
        FAIL() << "a failed call was not noticed";
    } catch (...) {
        EXPECT_EQ(E_ACCESSDENIED, ResultFromCaughtException());
    }
}

TEST(ResultFromCaughtException, FailedPlatformCall_HasItsCode) {
    EXPECT_EQ(DISP_E_OVERFLOW, CodeOf(CComException(DISP_E_OVERFLOW)));
}

TEST(ResultFromCaughtException, NoMemory_IsEOutOfMemory) {
    EXPECT_EQ(E_OUTOFMEMORY, CodeOf(std::bad_alloc()));
}

TEST(ResultFromCaughtException, AnythingElse_IsEFail) {
    EXPECT_EQ(E_FAIL, CodeOf(std::runtime_error("failed")));
    EXPECT_EQ(E_FAIL, CodeOf(7));
}

} // namespace

} // namespace vant
