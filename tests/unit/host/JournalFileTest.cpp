#include "host/record/JournalFile.h"

#include "tests/support/TemporaryFolder.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

namespace vant::host {

namespace {

class JournalFileTest : public ::testing::Test {
protected:
    void Fill(const std::string& content) const { m_folder.Write("journal", content); }
    std::string Content() const {
        std::ostringstream content;
        content << std::ifstream(m_file, std::ios::binary).rdbuf();
        return content.str();
    }

    const TemporaryFolder m_folder;
    const std::filesystem::path m_file = m_folder.Path() / "journal";
};

TEST_F(JournalFileTest, Records_AreLinesAtOnce) {
    JournalFile file(m_file, {}, false);
    file.Write({});
    EXPECT_EQ(Content().find("{\"time\":0,"), 0U);
    EXPECT_EQ(Content().back(), '\n');
    EXPECT_TRUE(file.Close());
}

TEST_F(JournalFileTest, EarlierJournalOrEmptyFile_IsReplaced) {
    Fill("");
    JournalFile(m_file, {}, false).Write({});
    const std::string journal = Content();
    EXPECT_NO_THROW(JournalFile(m_file, {}, false));
    EXPECT_EQ(Content(), "");
    EXPECT_NE(journal, "");
}

TEST_F(JournalFileTest, AnythingElse_IsReplacedOnlyByForce) {
    Fill("my thesis");
    EXPECT_THROW(JournalFile(m_file, {}, false), JournalFileError);
    EXPECT_EQ(Content(), "my thesis");
    EXPECT_NO_THROW(JournalFile(m_file, {}, true));
    EXPECT_EQ(Content(), "");
}

TEST_F(JournalFileTest, FileInUse_IsRefusedUnderEveryName) {
    JournalFile(m_file, {}, false).Write({});
    const std::string before = Content();
    const std::filesystem::path otherName = m_file.parent_path() / "." / m_file.filename();
    EXPECT_THROW(JournalFile(m_file, {{"the engine", otherName}}, true), JournalFileError);
    EXPECT_EQ(Content(), before);
    EXPECT_NO_THROW(JournalFile(m_file, {{"the engine", "no such file"}}, true));
}

TEST_F(JournalFileTest, FileThatCannotBeOpened_ThrowsTheReason) {
    EXPECT_THROW(JournalFile(m_file / "in" / "no" / "folder", {}, false), JournalFileError);
}

} // namespace

} // namespace vant::host
