#include "host/procedure/InputFile.h"

#include "tests/support/TemporaryFolder.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace vant::host {

namespace {

TEST(ReadFile, WholeContent_IsReturned) {
    std::string content = "a\r\n\xFF";
    content += '\0';
    content.append(200000, 'x');
    const TemporaryFolder folder;
    EXPECT_EQ(ReadFile(folder.Write("file", content)), content);
    EXPECT_EQ(ReadFile(folder.Write("file", "")), "");
}

TEST(ReadFile, MissingFileOrFolder_ThrowsTheReason) {
    EXPECT_THROW(ReadFile("no such file"), InputError);
    EXPECT_THROW(ReadFile(std::filesystem::temp_directory_path()), InputError);
}

TEST(ReadFile, LargerThanTheLimit_IsRefused) {
    const TemporaryFolder folder;
    const std::filesystem::path file = folder.Write("file", "x");
    std::filesystem::resize_file(file, largestInput);
    EXPECT_EQ(ReadFile(file).size(), largestInput);
    std::filesystem::resize_file(file, largestInput + 1);
    EXPECT_THROW(ReadFile(file), InputError);
}

} // namespace

} // namespace vant::host
