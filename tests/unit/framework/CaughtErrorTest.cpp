#include "framework/CaughtError.h"

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
        return CodeOfCaughtError();
    }
}

TEST(CodeOfCaughtError, FailedHostCall_HasItsCode) {
    try {
        CCheckedResult result;
        result = E_ACCESSDENIED;
        FAIL() << "a failed call was not noticed";
    } catch (...) {
        EXPECT_EQ(E_ACCESSDENIED, CodeOfCaughtError());
    }
}

TEST(CodeOfCaughtError, FailedPlatformCall_HasItsCode) {
    EXPECT_EQ(DISP_E_OVERFLOW, CodeOf(CComException(DISP_E_OVERFLOW)));
}

TEST(CodeOfCaughtError, NoMemory_IsEOutOfMemory) {
    EXPECT_EQ(E_OUTOFMEMORY, CodeOf(std::bad_alloc()));
}

TEST(CodeOfCaughtError, AnythingElse_IsEFail) {
    EXPECT_EQ(E_FAIL, CodeOf(std::runtime_error("failed")));
    EXPECT_EQ(E_FAIL, CodeOf(7));
}

} // namespace

} // namespace vant
