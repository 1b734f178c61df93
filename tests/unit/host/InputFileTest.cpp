#include "host/procedure/InputFile.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

namespace vant::host {

namespace {

std::filesystem::path TestFile() {
    return std::filesystem::path(::testing::TempDir()) /
           (std::string("vant_input_") + ::testing::UnitTest::GetInstance()->current_test_info()->name());
}

TEST(ReadFile, WholeContent_IsReturned) {
    std::string content = "a\r\n\xFF";
    content += '\0';
    content.append(200000, 'x');
    std::ofstream(TestFile(), std::ios::binary) << content;
    EXPECT_EQ(ReadFile(TestFile()), content);
    std::ofstream(TestFile(), std::ios::binary | std::ios::trunc);
    EXPECT_EQ(ReadFile(TestFile()), "");
    std::filesystem::remove(TestFile());
}

TEST(ReadFile, MissingFileOrFolder_ThrowsTheReason) {
    EXPECT_THROW(ReadFile("no such file"), InputError);
    EXPECT_THROW(ReadFile(std::filesystem::temp_directory_path()), InputError);
}

TEST(ReadFile, LargerThanTheLimit_IsRefused) {
    std::ofstream(TestFile(), std::ios::binary) << 'x';
    std::filesystem::resize_file(TestFile(), largestInput);
    EXPECT_EQ(ReadFile(TestFile()).size(), largestInput);
    std::filesystem::resize_file(TestFile(), largestInput + 1);
    EXPECT_THROW(ReadFile(TestFile()), InputError);
    std::filesystem::remove(TestFile());
}

} // namespace

} // namespace vant::host
