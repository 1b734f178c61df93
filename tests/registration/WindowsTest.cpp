// What only Windows has: the type library, resources, per-user registration, a registry that refuses.

#include "platform/Bstr.h"
#include "tests/registration/RegistrationFixture.h"

#include <cstring>
#include <iterator>
#include <string>
#include <string_view>
#include <winver.h>

namespace vant {

namespace {

constexpr GUID libraryId = {0x3BE2B2AE, 0x1EB4, 0x4FE6, {0xBC, 0xBD, 0xF4, 0x5D, 0x8D, 0x79, 0xFE, 0x5D}};

/// The module as an instance whose resources can be read; the fixture keeps it loaded.
HMODULE Instance() {
    return GetModuleHandleW(BuiltModule::File().c_str());
}

std::string_view Resource(UINT number, const wchar_t* type) {
    const HRSRC found = FindResourceW(Instance(), MAKEINTRESOURCEW(number), type);
    const HGLOBAL loaded = found ? LoadResource(Instance(), found) : nullptr;
    const auto* const bytes = static_cast<const char*>(loaded ? LockResource(loaded) : nullptr);
    return bytes ? std::string_view(bytes, SizeofResource(Instance(), found)) : std::string_view();
}

TEST_F(Registration, ScriptResourcesOfEveryClass_AreTheStatedText) {
    for (const StatedClass& stated : StatedClasses())
        EXPECT_EQ(Resource(stated.resource, L"REGISTRY"), ScriptOf(stated)) << stated.resource;
    EXPECT_EQ(FindResourceW(Instance(), MAKEINTRESOURCEW(100), L"REGISTRY"), nullptr);
}

TEST_F(Registration, ProjectName_IsString100) {
    wchar_t text[64] = {};
    EXPECT_EQ(LoadStringW(Instance(), 100, text, static_cast<int>(std::size(text))), 12);
    EXPECT_STREQ(text, L"VantCommands");
}

TEST_F(Registration, VersionResource_NamesTheModuleAndItsVersion) {
    DWORD ignored = 0;
    std::string block(GetFileVersionInfoSizeW(file.c_str(), &ignored), '\0');
    ASSERT_TRUE(GetFileVersionInfoW(file.c_str(), 0, static_cast<DWORD>(block.size()), block.data()));
    void* data = nullptr;
    UINT size = 0;
    ASSERT_TRUE(VerQueryValueW(block.data(), L"\\", &data, &size));
    const auto* const fixed = static_cast<const VS_FIXEDFILEINFO*>(data);
    EXPECT_EQ(HIWORD(fixed->dwFileVersionMS), 1);
    EXPECT_EQ(fixed->dwFileType, static_cast<DWORD>(VFT_DLL));
    ASSERT_TRUE(VerQueryValueW(block.data(), L"\\StringFileInfo\\040904B0\\OriginalFilename", &data, &size));
    EXPECT_STREQ(static_cast<const wchar_t*>(data), L"VantCommands.dll");
}

TEST_F(Registration, TypeLibrary_LoadsByItsIdentifierWithAllCoclasses) {
    CComPtr<ITypeLib> library;
    EXPECT_TRUE(FAILED(LoadRegTypeLib(libraryId, 1, 0, 0, &library)));
    ASSERT_EQ(module.RegisterServer(), S_OK);
    ASSERT_EQ(LoadRegTypeLib(libraryId, 1, 0, 0, &library), S_OK);

    CComBSTR name;
    CComBSTR help;
    ASSERT_EQ(library->GetDocumentation(MEMBERID_NIL, &name, &help, nullptr, nullptr), S_OK);
    EXPECT_EQ(name.Text(), L"VantCommands");
    EXPECT_EQ(help.Text(), L"VantCommands 1.0 Type Library");

    ASSERT_EQ(library->GetTypeInfoCount(), StatedClasses().size());
    for (const StatedClass& stated : StatedClasses()) {
        CLSID classId;
        ASSERT_EQ(CLSIDFromString(stated.clsid, &classId), S_OK);
        CComPtr<ITypeInfo> info;
        ASSERT_EQ(library->GetTypeInfoOfGuid(classId, &info), S_OK) << stated.resource;
        CComBSTR className;
        CComBSTR classHelp;
        ASSERT_EQ(info->GetDocumentation(MEMBERID_NIL, &className, &classHelp, nullptr, nullptr), S_OK);
        EXPECT_EQ(className.Text(), stated.name);
        EXPECT_EQ(classHelp.Text(), std::wstring(stated.name) + L" Class");
        TYPEATTR* attributes = nullptr;
        ASSERT_EQ(info->GetTypeAttr(&attributes), S_OK);
        EXPECT_EQ(attributes->typekind, TKIND_COCLASS);
        info->ReleaseTypeAttr(attributes);
    }
}

TEST_F(Registration, ClassIdentifiersKey_StaysAfterUnregistering) {
    ASSERT_EQ(module.RegisterServer(), S_OK);
    ASSERT_EQ(module.UnregisterServer(), S_OK);
    HKEY key = nullptr;
    EXPECT_EQ(RegOpenKeyExW(HKEY_CLASSES_ROOT, L"CLSID", 0, KEY_READ, &key), ERROR_SUCCESS);
    RegCloseKey(key);
}

TEST_F(Registration, KeyThatMayNotBeWritten_EndsItAndWhatWasWrittenStays) {
    const auto built = StatedClasses();
    ASSERT_GE(built.size(), 3U);
    const std::size_t failing = built.size() / 2;
    const std::wstring versioned = ProgId(built[failing]) + L".1";
    // Below a volatile key the system refuses any that is to last.
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyExW(HKEY_CLASSES_ROOT, versioned.c_str(), 0, nullptr, REG_OPTION_VOLATILE,
                              KEY_WRITE, nullptr, &key, nullptr),
              ERROR_SUCCESS);
    RegCloseKey(key);

    EXPECT_EQ(module.RegisterServer(), HRESULT_FROM_WIN32(ERROR_CHILD_MUST_BE_VOLATILE));
    Subtree expected;
    for (std::size_t i = 0; i < failing; ++i)
        expected.merge(EntriesOf(built[i], file));
    expected[versioned][L""] = std::wstring(built[failing].name) + L" Class";
    EXPECT_EQ(root.OfTheModule(), expected);
}

/// Makes a key below the user's own stand for the classes root in this process, as per-user registration
/// does.
class UserClasses {
public:
    UserClasses() {
        RegCreateKeyExW(HKEY_CURRENT_USER, path, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &m_key, nullptr);
        status = RegOverridePredefKey(HKEY_CLASSES_ROOT, m_key);
    }
    ~UserClasses() {
        RegOverridePredefKey(HKEY_CLASSES_ROOT, nullptr);
        RegCloseKey(m_key);
        RegDeleteTreeW(HKEY_CURRENT_USER, path);
    }
    UserClasses(const UserClasses&) = delete;
    UserClasses& operator=(const UserClasses&) = delete;

    LSTATUS status;

private:
    static constexpr const wchar_t* path = L"Software\\VantCommands registration test";
    HKEY m_key = nullptr;
};

TEST_F(Registration, PerUser_WritesEverythingForTheUserAloneAndRemovesIt) {
    const Subtree machine = root.Whole();
    {
        const UserClasses redirected;
        ASSERT_EQ(redirected.status, ERROR_SUCCESS);
        EXPECT_EQ(module.RegisterServer(), S_OK);
        EXPECT_EQ(ClassEntries(root.OfTheModule()), ClassEntries(EntriesOfAll(file)));
        EXPECT_EQ(module.UnregisterServer(), S_OK);
        EXPECT_EQ(root.OfTheModule(), Subtree());
        EXPECT_EQ(module.RegisterServer(), S_OK);
    }
    EXPECT_EQ(root.Whole(), machine);
}

/// Makes a function of the system return a code and do nothing else.
class ReplacedFunction {
public:
    ReplacedFunction(const wchar_t* library, const char* name, HRESULT result)
        : m_code(reinterpret_cast<unsigned char*>(
              reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(library), name)))) {
        if (!m_code)
            return;
        unsigned char code[] = {0xB8, 0, 0, 0, 0, 0xC3}; // mov eax, result; ret
        std::memcpy(code + 1, &result, sizeof(result));
        std::memcpy(m_old, m_code, sizeof(m_old));
        Write(code);
    }
    ~ReplacedFunction() {
        if (m_code)
            Write(m_old);
    }
    ReplacedFunction(const ReplacedFunction&) = delete;
    ReplacedFunction& operator=(const ReplacedFunction&) = delete;

    bool Exists() const { return m_code != nullptr; }

private:
    void Write(const unsigned char (&bytes)[6]) {
        DWORD protection = 0;
        VirtualProtect(m_code, sizeof(bytes), PAGE_EXECUTE_READWRITE, &protection);
        std::memcpy(m_code, bytes, sizeof(bytes));
        VirtualProtect(m_code, sizeof(bytes), protection, &protection);
        FlushInstructionCache(GetCurrentProcess(), m_code, sizeof(bytes));
    }

    unsigned char* m_code;
    unsigned char m_old[6] = {};
};

constexpr HRESULT replaced = static_cast<HRESULT>(0x8004F001);

TEST_F(Registration, PerUser_UsesThePerUserCallsForTheTypeLibrary) {
    const UserClasses redirected;
    {
        const ReplacedFunction perUser(L"oleaut32.dll", "RegisterTypeLibForUser", replaced);
        ASSERT_TRUE(perUser.Exists());
        EXPECT_EQ(module.RegisterServer(), replaced);
        EXPECT_EQ(ClassEntries(root.OfTheModule()), ClassEntries(EntriesOfAll(file)))
            << "what was written stays";
    }
    EXPECT_EQ(module.RegisterServer(), S_OK);
    {
        const ReplacedFunction perUser(L"oleaut32.dll", "UnRegisterTypeLibForUser", replaced);
        ASSERT_TRUE(perUser.Exists());
        EXPECT_EQ(module.UnregisterServer(), replaced);
        EXPECT_EQ(ClassEntries(root.OfTheModule()), Subtree());
    }
    EXPECT_EQ(module.UnregisterServer(), S_OK);
    EXPECT_EQ(root.OfTheModule(), Subtree());
}

TEST_F(Registration, TypeLibraryThatFails_EndsRegistrationAndUnregisteringRemovesWhatWasWritten) {
    for (const char* step : {"LoadTypeLibEx", "RegisterTypeLib"}) {
        SCOPED_TRACE(step);
        {
            const ReplacedFunction failing(L"oleaut32.dll", step, replaced);
            ASSERT_TRUE(failing.Exists());
            EXPECT_EQ(module.RegisterServer(), replaced);
        }
        EXPECT_EQ(ClassEntries(root.OfTheModule()), ClassEntries(EntriesOfAll(file))) << "it stays";
        EXPECT_EQ(module.UnregisterServer(), S_OK);
        EXPECT_EQ(root.OfTheModule(), Subtree());
    }
}

TEST_F(Registration, TypeLibraryThatCannotBeRemoved_EndsUnregisteringWithItsCode) {
    ASSERT_EQ(module.RegisterServer(), S_OK);
    {
        const ReplacedFunction failing(L"oleaut32.dll", "UnRegisterTypeLib", replaced);
        ASSERT_TRUE(failing.Exists());
        EXPECT_EQ(module.UnregisterServer(), replaced);
    }
    EXPECT_EQ(root.OfTheModule(), TypeLibraryEntries(file));
    EXPECT_EQ(module.UnregisterServer(), S_OK);
    EXPECT_EQ(root.OfTheModule(), Subtree());
}

TEST_F(Registration, ForTheMachine_UsesTheMachineWideCallsForTheTypeLibrary) {
    {
        const ReplacedFunction perUser(L"oleaut32.dll", "RegisterTypeLibForUser", replaced);
        EXPECT_EQ(module.RegisterServer(), S_OK);
    }
    const ReplacedFunction perUser(L"oleaut32.dll", "UnRegisterTypeLibForUser", replaced);
    EXPECT_EQ(module.UnregisterServer(), S_OK);
}

/// A key of the machine's classes that leads to one of the user's, as the classes root itself shows a key
/// that the user's classes have, too.
class KeyThatLeadsToTheUser {
public:
    explicit KeyThatLeadsToTheUser(const std::wstring& path) : m_path(L"Software\\Classes\\" + path) {
        HKEY user = nullptr;
        RegCreateKeyExW(HKEY_CURRENT_USER, usersPath, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &user, nullptr);
        const std::wstring target = NameOf(user);
        RegCloseKey(user);
        HKEY link = nullptr;
        status = RegCreateKeyExW(HKEY_LOCAL_MACHINE, m_path.c_str(), 0, nullptr, REG_OPTION_CREATE_LINK,
                                 KEY_ALL_ACCESS, nullptr, &link, nullptr);
        if (status == ERROR_SUCCESS)
            status = RegSetValueExW(link, L"SymbolicLinkValue", 0, REG_LINK,
                                    reinterpret_cast<const BYTE*>(target.c_str()),
                                    static_cast<DWORD>(target.size() * sizeof(wchar_t)));
        RegCloseKey(link);
    }
    ~KeyThatLeadsToTheUser() {
        using DeleteKey = LONG NTAPI(HANDLE);
        HKEY link = nullptr;
        RegOpenKeyExW(HKEY_LOCAL_MACHINE, m_path.c_str(), REG_OPTION_OPEN_LINK, KEY_ALL_ACCESS, &link);
        Ntdll<DeleteKey>("NtDeleteKey")(link);
        RegCloseKey(link);
        RegDeleteTreeW(HKEY_CURRENT_USER, usersPath);
    }
    KeyThatLeadsToTheUser(const KeyThatLeadsToTheUser&) = delete;
    KeyThatLeadsToTheUser& operator=(const KeyThatLeadsToTheUser&) = delete;

    LSTATUS status;

private:
    template <class Function>
    static Function* Ntdll(const char* name) {
        return reinterpret_cast<Function*>(
            reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), name)));
    }
    static std::wstring NameOf(HKEY key) {
        using QueryKey = LONG NTAPI(HANDLE, int, void*, ULONG, ULONG*);
        constexpr int keyNameInformation = 3;
        struct {
            ULONG byteLength;
            wchar_t name[1024];
        } information = {};
        ULONG size = 0;
        Ntdll<QueryKey>("NtQueryKey")(key, keyNameInformation, &information, sizeof(information), &size);
        return {information.name, information.byteLength / sizeof(wchar_t)};
    }

    static constexpr const wchar_t* usersPath = L"Software\\VantCommands registration link";
    const std::wstring m_path;
};

TEST_F(Registration, ForTheMachine_UsesTheMachineWideCallsWhateverTheUserHasRegistered) {
    const KeyThatLeadsToTheUser key(L"TypeLib\\{3BE2B2AE-1EB4-4FE6-BCBD-F45D8D79FE5D}");
    ASSERT_EQ(key.status, ERROR_SUCCESS);
    {
        const ReplacedFunction perUser(L"oleaut32.dll", "RegisterTypeLibForUser", replaced);
        EXPECT_EQ(module.RegisterServer(), S_OK);
    }
    const ReplacedFunction perUser(L"oleaut32.dll", "UnRegisterTypeLibForUser", replaced);
    EXPECT_EQ(module.UnregisterServer(), S_OK);
}

TEST_F(Registration, ForTheMachineAfterTheUser_GoesToTheMachine) {
    HKEY usersClasses = nullptr;
    ASSERT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, L"Software\\Classes", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                              &usersClasses, nullptr),
              ERROR_SUCCESS);
    const auto asUser = [&](HRESULT (BuiltModule::*operation)() const) {
        RegOverridePredefKey(HKEY_CLASSES_ROOT, usersClasses);
        const HRESULT code = (module.*operation)();
        RegOverridePredefKey(HKEY_CLASSES_ROOT, nullptr);
        return code;
    };
    EXPECT_EQ(asUser(&BuiltModule::RegisterServer), S_OK);
    EXPECT_EQ(module.RegisterServer(), S_OK);
    EXPECT_EQ(asUser(&BuiltModule::UnregisterServer), S_OK);
    EXPECT_EQ(root.OfTheModule(), EntriesOfAll(file))
        << "the machine's registration does not need the user's";
    EXPECT_EQ(module.UnregisterServer(), S_OK);
    RegCloseKey(usersClasses);
}

TEST_F(Registration, ForTheMachine_LeavesTheClassesRootAsItWasFound) {
    ASSERT_EQ(module.RegisterServer(), S_OK);
    HKEY key = nullptr;
    ASSERT_EQ(RegOpenKeyExW(HKEY_CLASSES_ROOT, nullptr, 0, KEY_READ, &key), ERROR_SUCCESS);
    // Wine opens no key for a root that is not redirected.
    EXPECT_EQ(key, HKEY_CLASSES_ROOT);
    RegCloseKey(key);
}

/// An activation context made from the manifest beside the module, active while the object lives.
class ActiveManifest {
public:
    ActiveManifest() {
        const std::filesystem::path manifest = ProgramFolder() / "VantCommands.manifest";
        ACTCTXW context = {};
        context.cbSize = sizeof(context);
        context.lpSource = manifest.c_str();
        m_context = CreateActCtxW(&context);
        active = m_context != INVALID_HANDLE_VALUE && ActivateActCtx(m_context, &m_cookie);
    }
    ~ActiveManifest() {
        if (active)
            DeactivateActCtx(0, m_cookie);
        if (m_context != INVALID_HANDLE_VALUE)
            ReleaseActCtx(m_context);
    }
    ActiveManifest(const ActiveManifest&) = delete;
    ActiveManifest& operator=(const ActiveManifest&) = delete;

    bool active = false;

private:
    HANDLE m_context = INVALID_HANDLE_VALUE;
    ULONG_PTR m_cookie = 0;
};

TEST_F(Registration, Manifest_MakesEveryClassCreatableWithoutRegistration) {
    for (const StatedClass& stated : StatedClasses())
        ASSERT_EQ(CreateByProgId(ProgId(stated)), CO_E_CLASSSTRING) << stated.resource;
    {
        const ActiveManifest manifest;
        ASSERT_TRUE(manifest.active) << GetLastError();
        for (const StatedClass& stated : StatedClasses()) {
            EXPECT_EQ(CreateByProgId(ProgId(stated)), S_OK) << stated.resource;
            EXPECT_EQ(CreateByProgId(ProgId(stated) + L".1"), S_OK) << stated.resource;
        }
        CComPtr<ITypeLib> library;
        EXPECT_EQ(LoadRegTypeLib(libraryId, 1, 0, 0, &library), S_OK);
    }
    EXPECT_EQ(CreateByProgId(ProgId(StatedClasses().front())), CO_E_CLASSSTRING);
}

} // namespace

} // namespace vant
