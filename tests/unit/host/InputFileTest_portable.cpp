#include "host/procedure/InputFile.h"

#include <gtest/gtest.h>

namespace vant::host {

namespace {

TEST(ReadFile, ReadThatFails_ThrowsTheReason) {
    // Nothing is mapped at address 0.
    try {
        ReadFile("/proc/self/mem");
        FAIL();
    } catch (const InputError& failure) {
        EXPECT_STREQ(failure.what(), "Input/output error");
    }
}

TEST(ReadFile, EndlessDevice_IsRefused) {
    EXPECT_THROW(ReadFile("/dev/zero"), InputError);
}

} // namespace

} // namespace vant::host
