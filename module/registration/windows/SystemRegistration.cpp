#include "module/registration/Registration.h"
#include "module/registration/windows/RegistryKeyStore.h"
#include "platform/ComPtr.h"

namespace vant {

namespace {

constexpr GUID libraryId = {0x3BE2B2AE, 0x1EB4, 0x4FE6, {0xBC, 0xBD, 0xF4, 0x5D, 0x8D, 0x79, 0xFE, 0x5D}};
constexpr WORD libraryMajor = 1;
constexpr WORD libraryMinor = 0;
constexpr LCID libraryLocale = 0;
constexpr SYSKIND system = sizeof(void*) == 8 ? SYS_WIN64 : SYS_WIN32;
constexpr const wchar_t* libraryKey = L"TypeLib\\{3BE2B2AE-1EB4-4FE6-BCBD-F45D8D79FE5D}";
constexpr const wchar_t* fileSubkey = system == SYS_WIN64 ? L"\\1.0\\0\\win64" : L"\\1.0\\0\\win32";

using RegisterFunction = HRESULT STDAPICALLTYPE(ITypeLib*, OLECHAR*, OLECHAR*);
using UnregisterFunction = HRESULT STDAPICALLTYPE(REFGUID, WORD, WORD, LCID, SYSKIND);

HINSTANCE ModuleInstance() {
    HMODULE instance = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(reinterpret_cast<void*>(&ModuleInstance)), &instance);
    return instance;
}

/// The per-user variant of a registration call if per-user registration is in force and the system has it;
/// otherwise the machine-wide call.
template <class Function>
Function* Choose(RootPlace root, const char* perUserName, Function* machineWide) {
    if (root != RootPlace::User)
        return machineWide;
    const HMODULE library = GetModuleHandleW(L"OLEAUT32.DLL");
    const FARPROC perUser = library ? GetProcAddress(library, perUserName) : nullptr;
    return perUser ? reinterpret_cast<Function*>(reinterpret_cast<void*>(perUser)) : machineWide;
}

/// The path under which the system can load a type library. It accepts none of MAX_PATH characters or more,
/// so a longer one is returned in its short form, if the volume has one.
std::wstring LoadablePath(const std::wstring& path) {
    if (path.size() < MAX_PATH)
        return path;
    constexpr std::wstring_view prefix = L"\\\\?\\"; // lifts the limit of the call
    const std::wstring unlimited = path.starts_with(prefix) ? path : std::wstring(prefix) + path;
    std::wstring shortPath(unlimited.size() + 1, L'\0');
    const DWORD length =
        GetShortPathNameW(unlimited.c_str(), shortPath.data(), static_cast<DWORD>(shortPath.size()));
    if (length == 0 || length >= shortPath.size())
        return path;
    return shortPath.substr(prefix.size(), length - prefix.size());
}

HRESULT RegisterTypeLibrary(RootPlace root) {
    std::wstring path = LoadablePath(ModulePath());
    CComPtr<ITypeLib> library;
    if (const HRESULT code = LoadTypeLibEx(path.c_str(), REGKIND_NONE, &library); FAILED(code))
        return code;
    std::wstring folder = path.substr(0, path.find_last_of(L'\\'));
    const auto registerLibrary = Choose<RegisterFunction>(root, "RegisterTypeLibForUser", &RegisterTypeLib);
    return registerLibrary(library.Get(), path.data(), folder.data());
}

HRESULT UnregisterTypeLibrary(RootPlace root) {
    if (!RegistryKeyStore::Exists(std::wstring(libraryKey) + fileSubkey))
        return RegistryKeyStore().DeleteKey(libraryKey); // a registration that failed may have left it empty
    const auto unregisterLibrary =
        Choose<UnregisterFunction>(root, "UnRegisterTypeLibForUser", &UnRegisterTypeLib);
    return unregisterLibrary(libraryId, libraryMajor, libraryMinor, libraryLocale, system);
}

} // namespace

std::string_view EmbeddedScript(UINT resource) {
    const HINSTANCE instance = ModuleInstance();
    const HRSRC found = FindResourceW(instance, MAKEINTRESOURCEW(resource), L"REGISTRY");
    const HGLOBAL loaded = found ? LoadResource(instance, found) : nullptr;
    const auto* const text = static_cast<const char*>(loaded ? LockResource(loaded) : nullptr);
    return text ? std::string_view(text, SizeofResource(instance, found)) : std::string_view();
}

std::wstring ModulePath() {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length =
            GetModuleFileNameW(ModuleInstance(), path.data(), static_cast<DWORD>(path.size()));
        if (length < path.size()) {
            path.resize(length);
            return path;
        }
        path.resize(path.size() * 2);
    }
}

HRESULT RegisterWithSystem(ScriptMode mode) {
    const RootPlace root = PlaceOfTheClassesRoot();
    const MachineClassesRoot machine(root);
    if (FAILED(machine.Result()))
        return machine.Result();
    RegistryKeyStore store;
    if (const HRESULT code = RunAllScripts(mode, store); FAILED(code))
        return code;
    return mode == ScriptMode::Register ? RegisterTypeLibrary(root) : UnregisterTypeLibrary(root);
}

} // namespace vant
