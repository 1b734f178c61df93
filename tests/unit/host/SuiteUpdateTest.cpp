#include "host/suite/SuiteUpdate.h"

#include "host/procedure/InputFile.h"
#include "host/suite/TestFileReader.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace vant::host {

namespace {

using Changes = std::map<std::string, std::size_t>;

class SuiteUpdateTest : public ::testing::Test {
protected:
    std::vector<TestCase> Write(const std::string& name, const std::string& toml) {
        Diagnostics found;
        auto cases = ReadTestFile(toml, FileName(m_folder.Write(name, toml)), found);
        EXPECT_EQ(found.Print("t"), "");
        return cases;
    }

    std::string FileOf(const std::string& name) const { return FileName(m_folder.Path() / name); }
    std::string TextOf(const std::string& name) const { return ReadFile(m_folder.Path() / name); }

    const TemporaryFolder m_folder;
    const Json m_failed = {{"verdict", "failed"}, {"path", {"a", "bad"}}};
    SuiteUpdate m_update;
};

const std::string beginning = "procedure = 'p.toml'\n[[case]]\nname = 'one'\n";
const std::string written =
    "expected = { verdict = \"failed\", ending = \"bad\", path = [\"a\", \"bad\"] }\n";

TEST_F(SuiteUpdateTest, CasesOfOneFile_AreChangedTogetherWhenItIsWritten) {
    const std::string second = "[[case]]\nname = 'two'\n";
    const auto cases = Write("t.test.toml", beginning + second);
    EXPECT_EQ(m_update.Update(cases.at(1), m_failed).expected.verdict, Verdict::Failed);
    EXPECT_EQ(m_update.Update(cases.at(0), m_failed).expected.ending->text, "bad");
    EXPECT_EQ(TextOf("t.test.toml"), beginning + second);
    EXPECT_EQ(m_update.Write(), (Changes{{FileOf("t.test.toml"), 2}}));
    EXPECT_EQ(TextOf("t.test.toml"), beginning + written + second + written);
    EXPECT_EQ(m_update.Refusals(), "");
    EXPECT_FALSE(std::filesystem::exists(m_folder.Path() / "t.test.toml.new"));
}

TEST_F(SuiteUpdateTest, CaseThatFits_ChangesNothing) {
    const auto cases = Write("t.test.toml", beginning + "expected = { verdict = 'failed' }\n");
    m_update.Update(cases.at(0), m_failed);
    EXPECT_EQ(m_update.Write(), Changes{});
}

TEST_F(SuiteUpdateTest, Sweep_IsRefusedOnceIfItDiffers) {
    for (const TestCase& each : Write("t.test.toml", beginning + "sweep.seed = [1, 2, 3]\n"))
        EXPECT_EQ(m_update.Update(each, m_failed).expected.verdict, Verdict::Passed);
    EXPECT_EQ(
        m_update.Refusals(),
        FileOf("t.test.toml") +
            ":2:1: warning: this sweep is not updated: a sweep stands for many cases, which may differ\n");
    EXPECT_EQ(m_update.Write(), Changes{});
}

TEST_F(SuiteUpdateTest, ProcedureWithoutTestFile_StaysAsItIs) {
    m_folder.Write("p.toml", "");
    TestCase procedure;
    procedure.file = FileOf("p.toml");
    EXPECT_FALSE(m_update.Update(procedure, m_failed).hasExpectation);
    EXPECT_EQ(m_update.Write(), Changes{});
}

} // namespace

} // namespace vant::host
