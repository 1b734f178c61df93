#include "platform/portable/catalogue.h"

#include "module/registration/Script.h"
#include "module/registration/portable/CatalogueKeyStore.h"
#include "platform/ClassRegistration.h"
#include "tests/support/TemporaryFolder.h"

#include <chrono>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace vant {
namespace {

class CatalogueFile : public ::testing::Test {
protected:
    std::string Text() const {
        std::ifstream in(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }

    void Change(const std::wstring& value) const {
        Catalogue::Change(file, [&](Catalogue& catalogue) { catalogue.Set(L"A", L"", value); });
    }
    std::wstring Value() const { return *Catalogue::Read(file).Find(L"A", L""); }
    std::filesystem::path Replacement() const { return file.string() + ".new"; }

    const TemporaryFolder temporary;
    const std::filesystem::path folder = temporary.Path();
    const std::filesystem::path file = folder / "sub folder" / "catalogue.txt";
};

/// An environment variable with another value, or without one, while the object lives.
class EnvironmentVariable {
public:
    EnvironmentVariable(const char* name, const char* value) : m_name(name) {
        if (const char* const former = std::getenv(name))
            m_former = former;
        Set(value);
    }
    ~EnvironmentVariable() { Set(m_former ? m_former->c_str() : nullptr); }
    EnvironmentVariable(const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

private:
    void Set(const char* value) const {
        if (value)
            setenv(m_name, value, 1);
        else
            unsetenv(m_name);
    }

    const char* const m_name;
    std::optional<std::string> m_former;
};

TEST_F(CatalogueFile, MissingFile_IsAnEmptyCatalogue) {
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
TEST_F(CatalogueFile, LinkInPlaceOfTheReplacement_IsRemovedAndItsTargetStays) {
    Change(L"old");
    const auto precious = folder / "precious";
    std::ofstream(precious) << "mine";
    std::filesystem::create_symlink(precious, Replacement());
    Change(L"new");
    EXPECT_EQ(Value(), L"new");
    std::string kept;
    std::ifstream(precious) >> kept;
    EXPECT_EQ(kept, "mine");
    EXPECT_FALSE(std::filesystem::exists(std::filesystem::symlink_status(Replacement())));
}
TEST_F(CatalogueFile, LeftoverReplacement_IsReplaced) {
    Change(L"old");
    std::ofstream(Replacement()) << "half of a cata";
    std::filesystem::permissions(Replacement(), std::filesystem::perms::none);
    Change(L"new");
    EXPECT_EQ(Value(), L"new");
    EXPECT_FALSE(std::filesystem::exists(Replacement()));
}
TEST_F(CatalogueFile, FileThatIsNotRegular_IsRefusedAndStays) {
    std::filesystem::create_directories(file.parent_path());
    ASSERT_EQ(mkfifo(file.c_str(), 0600), 0);
    const auto pipe = file;
    for (const std::filesystem::path& wrong : {pipe, std::filesystem::path("/dev/zero"), folder}) {
        SCOPED_TRACE(wrong);
        const auto before = std::filesystem::status(wrong).type();
        for (const auto& operation : {std::function([&] { Catalogue::Read(wrong); }),
                                      std::function([&] { Catalogue::Change(wrong, [](Catalogue&) {}); })}) {
            try {
                operation();
                ADD_FAILURE() << "taken for a catalogue";
            } catch (const std::runtime_error& error) {
                EXPECT_EQ(std::string(error.what()), wrong.string() + ": not a regular file");
            }
        }
        EXPECT_EQ(std::filesystem::status(wrong).type(), before);
    }
}
TEST_F(CatalogueFile, LockHeldForTooLong_IsReported) {
    Change(L"old");
    const int other = open(file.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_EQ(flock(other, LOCK_EX), 0);
    try {
        Catalogue::Change(
            file, [](Catalogue& catalogue) { catalogue.Set(L"A", L"", L"new"); },
            std::chrono::milliseconds(50));
        ADD_FAILURE() << "changed in spite of the lock";
    } catch (const std::runtime_error& error) {
        EXPECT_NE(std::string(error.what()).find("locked for 50 ms"), std::string::npos) << error.what();
    }
    close(other);
    EXPECT_EQ(Value(), L"old");
}
TEST_F(CatalogueFile, LinkToACatalogue_StaysALink) {
    const auto target = folder / "elsewhere" / "classes.txt";
    std::filesystem::create_directories(file.parent_path());
    std::filesystem::create_symlink(std::filesystem::path("..") / "elsewhere" / "classes.txt", file);
    Change(L"x");
    EXPECT_TRUE(std::filesystem::is_symlink(file));
    EXPECT_EQ(*Catalogue::Read(target).Find(L"A", L""), L"x");
    Catalogue::Change(file, [](Catalogue& catalogue) { catalogue.EraseTree(L"A"); });
    EXPECT_TRUE(std::filesystem::is_symlink(file));
    EXPECT_FALSE(std::filesystem::exists(target));
}
TEST_F(CatalogueFile, LinkToItself_IsReported) {
    std::filesystem::create_directories(file.parent_path());
    std::filesystem::create_symlink(file, file);
    EXPECT_THROW(Catalogue::Read(file), std::runtime_error);
    EXPECT_THROW(Change(L"x"), std::runtime_error);
}
TEST_F(CatalogueFile, ModeOfTheFile_Stays) {
    Change(L"old");
    const auto mode = std::filesystem::perms::owner_read | std::filesystem::perms::owner_write;
    std::filesystem::permissions(file, mode);
    Change(L"new");
    EXPECT_EQ(std::filesystem::status(file).permissions(), mode);
}
TEST_F(CatalogueFile, RegisteredModules_AreThoseOfOneCatalogue) {
    const EnvironmentVariable variable("VANT_CATALOGUE", file.c_str());
    Catalogue::Change(
        file, [](Catalogue& catalogue) { catalogue.Set(L"CLSID\\{B}\\InprocServer32", L"", L"/b.so"); });
    const auto modules = RegisteredModules({L"{A}", L"{B}"});
    ASSERT_EQ(modules.size(), 2U);
    EXPECT_FALSE(modules[0]);
    EXPECT_EQ(modules[1], L"/b.so");
}
TEST_F(CatalogueFile, RegisteredModulesOfAMalformedCatalogue_AreAnErrorWithFileAndLine) {
    const EnvironmentVariable variable("VANT_CATALOGUE", file.c_str());
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file) << "[A]\nnonsense\n";
    try {
        RegisteredModules({L"{A}"});
        ADD_FAILURE() << "a malformed catalogue was taken";
    } catch (const std::runtime_error& error) {
        EXPECT_NE(std::string(error.what()).find("catalogue.txt:2: "), std::string::npos) << error.what();
    }
}
TEST_F(CatalogueFile, LastKeyGone_RemovesTheFile) {
    Catalogue::Change(file, [](Catalogue& catalogue) { catalogue.Set(L"A\\B", L"", L"x"); });
    Catalogue::Change(file, [](Catalogue& catalogue) { catalogue.EraseTree(L"a"); });
    EXPECT_FALSE(std::filesystem::exists(file));
}
TEST_F(CatalogueFile, Place_FollowsTheEnvironment) {
    {
        const EnvironmentVariable variable("VANT_CATALOGUE", file.c_str());
        EXPECT_EQ(Catalogue::File(), file);
    }
    const EnvironmentVariable none("VANT_CATALOGUE", nullptr);
    const EnvironmentVariable data("XDG_DATA_HOME", folder.c_str());
    EXPECT_EQ(Catalogue::File(), folder / "VantCommands" / "catalogue.txt");
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
