#include "platform/portable/catalogue.h"

#include "module/registration/Script.h"
#include "module/registration/portable/CatalogueKeyStore.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace vant {
namespace {

class CatalogueFile : public ::testing::Test {
protected:
    void SetUp() override {
        std::string pattern = (std::filesystem::temp_directory_path() / "catalogueXXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        folder = pattern;
        file = folder / "sub folder" / "catalogue.txt";
    }
    void TearDown() override { std::filesystem::remove_all(folder); }

    std::string Text() const {
        std::ifstream in(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }

    std::filesystem::path folder;
    std::filesystem::path file;
};

TEST_F(CatalogueFile, AbsentFile_IsAnEmptyCatalogue) {
    EXPECT_TRUE(Catalogue::Read(file).All().empty());
}
TEST_F(CatalogueFile, WrittenValues_ReadBackWhateverTheyHold) {
    const std::wstring value = L"it's \"quoted\" \\ back\nnext = [x] \u00E9\u4E2D#";
    Catalogue::Change(file, [&](Catalogue& catalogue) {
        catalogue.Set(L"A\\B", L"", value);
        catalogue.Set(L"A\\B", L"na\"me=", L"");
    });
    const Catalogue read = Catalogue::Read(file);
    ASSERT_NE(read.Find(L"A\\B", L""), nullptr);
    EXPECT_EQ(*read.Find(L"A\\B", L""), value);
    ASSERT_NE(read.Find(L"A\\B", L"na\"me="), nullptr);
}
TEST_F(CatalogueFile, Names_IgnoreLetterCase) {
    Catalogue::Change(file, [](Catalogue& catalogue) { catalogue.Set(L"CLSID\\{7828e1bc}", L"Name", L"x"); });
    EXPECT_NE(Catalogue::Read(file).Find(L"clsid\\{7828E1BC}", L"NAME"), nullptr);
}
TEST_F(CatalogueFile, TextIsReadableLineByLine) {
    Catalogue::Change(file, [](Catalogue& catalogue) {
        catalogue.Set(L"A", L"", L"first");
        catalogue.Set(L"A\\B", L"Model", L"Free");
    });
    EXPECT_EQ(Text(), "# Class catalogue of VantCommands. Modules write it when they are registered.\n"
                      "\n[A]\n@=\"first\"\n\n[A\\B]\n\"Model\"=\"Free\"\n");
}
TEST_F(CatalogueFile, WrongLine_IsReportedAndTheFileStays) {
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file) << "# mine\n[A]\n@=\"x\"\nnonsense\n";
    const std::string before = Text();
    try {
        Catalogue::Change(file, [](Catalogue&) {});
        FAIL() << "a wrong catalogue was taken";
    } catch (const std::runtime_error& error) {
        EXPECT_NE(std::string(error.what()).find("catalogue.txt:4: "), std::string::npos) << error.what();
    }
    EXPECT_EQ(Text(), before);
}
TEST_F(CatalogueFile, ThrowingChange_LeavesTheOldFileAndNoOther) {
    Catalogue::Change(file, [](Catalogue& catalogue) { catalogue.Set(L"A", L"", L"old"); });
    EXPECT_THROW(Catalogue::Change(file,
                                   [](Catalogue& catalogue) {
                                       catalogue.Set(L"A", L"", L"new");
                                       throw std::runtime_error("no");
                                   }),
                 std::runtime_error);
    EXPECT_EQ(*Catalogue::Read(file).Find(L"A", L""), L"old");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(file.parent_path()), {}), 1);
}
TEST_F(CatalogueFile, FolderThatCannotBeMade_IsReported) {
    std::ofstream(folder / "plain") << "x";
    EXPECT_THROW(Catalogue::Change(folder / "plain" / "catalogue.txt", [](Catalogue&) {}),
                 std::runtime_error);
}
TEST_F(CatalogueFile, WritersAtOnce_LoseNothing) {
    constexpr int writers = 4;
    constexpr int rounds = 25;
    std::vector<std::thread> threads;
    for (int writer = 0; writer < writers; ++writer)
        threads.emplace_back([this, writer] {
            for (int round = 0; round < rounds; ++round)
                Catalogue::Change(file, [&](Catalogue& catalogue) {
                    catalogue.Set(L"W" + std::to_wstring(writer), std::to_wstring(round), L"x");
                });
        });
    for (std::thread& thread : threads)
        thread.join();
    const Catalogue read = Catalogue::Read(file);
    ASSERT_EQ(read.All().size(), static_cast<std::size_t>(writers));
    for (const auto& [key, values] : read.All())
        EXPECT_EQ(values.size(), static_cast<std::size_t>(rounds));
}
TEST_F(CatalogueFile, LastKeyGone_RemovesTheFile) {
    Catalogue::Change(file, [](Catalogue& catalogue) { catalogue.Set(L"A\\B", L"", L"x"); });
    Catalogue::Change(file, [](Catalogue& catalogue) { catalogue.EraseTree(L"a"); });
    EXPECT_FALSE(std::filesystem::exists(file));
}
TEST_F(CatalogueFile, Place_FollowsTheEnvironment) {
    const char* const old = std::getenv("VANT_CATALOGUE");
    const std::string kept = old ? old : "";
    setenv("VANT_CATALOGUE", file.c_str(), 1);
    EXPECT_EQ(Catalogue::File(), file);
    unsetenv("VANT_CATALOGUE");
    setenv("XDG_DATA_HOME", folder.c_str(), 1);
    EXPECT_EQ(Catalogue::File(), folder / "VantCommands" / "catalogue.txt");
    unsetenv("XDG_DATA_HOME");
    if (old)
        setenv("VANT_CATALOGUE", kept.c_str(), 1);
}
TEST_F(CatalogueFile, KeyNameWithControlCharacter_IsRefused) {
    Catalogue catalogue;
    CatalogueKeyStore store(catalogue);
    EXPECT_EQ(RunScript("HKCR { 'A\nB' = s 'x' }", L"m", ScriptMode::Register, store), E_INVALIDARG);
    EXPECT_TRUE(catalogue.All().empty());
}
TEST_F(CatalogueFile, KeyWithSubkeys_StaysWhenDeletedAlone) {
    Catalogue catalogue;
    CatalogueKeyStore store(catalogue);
    ASSERT_EQ(RunScript("HKCR { A = s 'a' { B = s 'b' } }", L"m", ScriptMode::Register, store), S_OK);
    EXPECT_EQ(store.DeleteKey(L"A"), S_OK);
    EXPECT_NE(catalogue.Find(L"A", L""), nullptr);
    EXPECT_EQ(store.DeleteKey(L"A\\B"), S_OK);
    EXPECT_EQ(store.DeleteKey(L"A"), S_OK);
    EXPECT_TRUE(catalogue.All().empty());
}

} // namespace
} // namespace vant
