// Registration in a class catalogue that fails, at its file or in the middle.

#include "framework/interfaces/ClassIds.h"
#include "module/Module.h"
#include "module/registration/Registration.h"
#include "module/registration/portable/CatalogueKeyStore.h"
#include "tests/registration/RegistrationFixture.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

namespace vant {

// The loop over the classes is linked into this program as well, over an object map and a path of the test's
// own.
std::span<ObjectMapRow> ObjectMap() noexcept {
    static ObjectMapRow rows[] = {{&CLSID_CompositeCommand, 103, nullptr},
                                  {&CLSID_CommandTerminator, 110, nullptr},
                                  {&CLSID_Calculator, 115, nullptr}};
    return rows;
}
std::wstring ModulePath() {
    return L"/opt/module.so";
}
HRESULT RegisterWithSystem(ScriptMode mode) {
    Catalogue scratch;
    CatalogueKeyStore store(scratch);
    return RunAllScripts(mode, store);
}

namespace {

/// A catalogue in which one key may not be written.
class RefusingStore final : public KeyStore {
public:
    RefusingStore(Catalogue& catalogue, std::wstring refused)
        : m_store(catalogue), m_refused(std::move(refused)) {}

    HRESULT CreateKey(const std::wstring& path) override {
        return path == m_refused ? E_ACCESSDENIED : m_store.CreateKey(path);
    }
    HRESULT SetValue(const std::wstring& path, const std::wstring& name, const std::wstring& text) override {
        return m_store.SetValue(path, name, text);
    }
    HRESULT DeleteValue(const std::wstring& path, const std::wstring& name) override {
        return m_store.DeleteValue(path, name);
    }
    HRESULT DeleteKey(const std::wstring& path) override {
        return path == m_refused ? E_ACCESSDENIED : m_store.DeleteKey(path);
    }
    HRESULT DeleteTree(const std::wstring& path) override { return m_store.DeleteTree(path); }

private:
    CatalogueKeyStore m_store;
    std::wstring m_refused;
};

Subtree Contents(const Catalogue& catalogue) {
    Subtree result;
    for (const auto& [key, values] : catalogue.All())
        result[key].insert(values.begin(), values.end());
    return result;
}

StatedClass Stated(UINT resource) {
    for (const StatedClass& each : StatedClasses()) {
        if (each.resource == resource)
            return each;
    }
    return {};
}

TEST(EmbeddedScripts, OfEveryClass_AreTheStatedText) {
    for (const StatedClass& stated : StatedClasses())
        EXPECT_EQ(EmbeddedScript(stated.resource), ScriptOf(stated)) << stated.resource;
    EXPECT_EQ(EmbeddedScript(100), "");
}

TEST(RegistrationInTheMiddle, KeyThatMayNotBeWritten_EndsItAndWhatWasWrittenStays) {
    Catalogue catalogue;
    RefusingStore store(catalogue, L"VantCommands.CommandTerminator\\CLSID");
    EXPECT_EQ(RunAllScripts(ScriptMode::Register, store), E_ACCESSDENIED);

    Subtree expected = EntriesOf(Stated(103), ModulePath());
    expected[L"VantCommands.CommandTerminator.1"][L""] = L"CommandTerminator Class";
    expected[L"VantCommands.CommandTerminator.1\\CLSID"][L""] = Stated(110).clsid;
    expected[L"VantCommands.CommandTerminator"][L""] = L"CommandTerminator Class";
    EXPECT_EQ(Contents(catalogue), expected);
}

TEST(RegistrationInTheMiddle, KeyThatMayNotBeRemoved_EndsUnregistrationThere) {
    Catalogue catalogue;
    RefusingStore store(catalogue, L"VantCommands.CommandTerminator.1\\CLSID");
    CatalogueKeyStore willing(catalogue);
    ASSERT_EQ(RunAllScripts(ScriptMode::Register, willing), S_OK);
    EXPECT_EQ(RunAllScripts(ScriptMode::Unregister, store), E_ACCESSDENIED);

    Subtree expected = EntriesOf(Stated(110), ModulePath());
    expected.merge(EntriesOf(Stated(115), ModulePath()));
    EXPECT_EQ(Contents(catalogue), expected);
}

class CatalogueFailure : public Registration {
protected:
    std::string Text() const {
        std::ifstream in(Catalogue::File(), std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
};

TEST_F(CatalogueFailure, MalformedCatalogue_IsRefusedAndStaysAsItIs) {
    const std::string before = "[A]\n@=\"x\"\nmy own notes\n";
    std::ofstream(Catalogue::File(), std::ios::binary) << before;
    EXPECT_EQ(module.RegisterServer(), E_ACCESSDENIED);
    EXPECT_EQ(Text(), before);
    EXPECT_EQ(module.UnregisterServer(), E_ACCESSDENIED);
    EXPECT_EQ(Text(), before);
    EXPECT_EQ(CreateByProgId(L"VantCommands.Calculator"), CO_E_CLASSSTRING);
    std::filesystem::remove(Catalogue::File());
}

TEST_F(CatalogueFailure, FolderThatCannotBeMade_IsAFailure) {
    const std::filesystem::path usual = Catalogue::File();
    const std::filesystem::path plain = usual.parent_path() / "plain";
    std::ofstream(plain) << "a file";
    setenv("VANT_CATALOGUE", (plain / "catalogue.txt").c_str(), 1);
    EXPECT_EQ(module.RegisterServer(), E_ACCESSDENIED);
    setenv("VANT_CATALOGUE", usual.c_str(), 1);
    EXPECT_EQ(root.Whole(), Subtree());
}

TEST_F(CatalogueFailure, CatalogueThatCannotBeReplaced_StaysAsItIs) {
    ASSERT_EQ(module.RegisterServer(), S_OK);
    const std::string before = Text();
    // The replacement is written beside the catalogue; a folder of its name is in its way, for root as well.
    std::filesystem::path replacement = Catalogue::File();
    replacement += ".new";
    std::filesystem::create_directories(replacement / "full");
    EXPECT_EQ(module.RegisterServer(), E_ACCESSDENIED);
    EXPECT_EQ(Text(), before);
    std::filesystem::remove_all(replacement);
}

TEST_F(CatalogueFailure, NoPlaceForACatalogue_IsAFailure) {
    const std::filesystem::path usual = Catalogue::File();
    const auto value = [](const char* name) {
        const char* const found = std::getenv(name);
        return std::string(found ? found : "");
    };
    const std::string home = value("HOME");
    const std::string data = value("XDG_DATA_HOME");
    for (const char* name : {"VANT_CATALOGUE", "HOME", "XDG_DATA_HOME"})
        unsetenv(name);
    EXPECT_EQ(module.RegisterServer(), E_ACCESSDENIED);
    if (!home.empty())
        setenv("HOME", home.c_str(), 1);
    if (!data.empty())
        setenv("XDG_DATA_HOME", data.c_str(), 1);
    setenv("VANT_CATALOGUE", usual.c_str(), 1);
}

} // namespace

} // namespace vant
