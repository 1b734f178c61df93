#include "module/registration/windows/RegistryKeyStore.h"

#include <winternl.h>

namespace vant {

namespace {

/// Owns an open registry key.
class Key {
public:
    Key() = default;
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;
    ~Key() {
        if (m_key)
            RegCloseKey(m_key);
    }
    HKEY Get() const { return m_key; }
    HKEY* operator&() { return &m_key; }

private:
    HKEY m_key = nullptr;
};

/// The result of a registry call as an HRESULT. A function, because the system's macro may look at its
/// argument twice and so make the call twice.
HRESULT FromStatus(LSTATUS status) {
    return HRESULT_FROM_WIN32(static_cast<DWORD>(status));
}

HRESULT Open(const std::wstring& path, REGSAM access, Key& key) {
    return FromStatus(RegOpenKeyExW(HKEY_CLASSES_ROOT, path.c_str(), 0, access, &key));
}

HRESULT OkIfMissing(HRESULT code) {
    return code == HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND) ? S_OK : code;
}

/// The name that the system itself has for an open key, which begins with where the key really lies; empty if
/// it cannot be told.
std::wstring NameOf(const Key& key) {
    using QueryKey = NTSTATUS NTAPI(HANDLE, int, void*, ULONG, ULONG*);
    constexpr int keyNameInformation = 3;
    const HMODULE ntdll = GetModuleHandleW(L"ntdll.dll");
    const auto queryKey =
        ntdll ? reinterpret_cast<QueryKey*>(reinterpret_cast<void*>(GetProcAddress(ntdll, "NtQueryKey")))
              : nullptr;
    struct {
        ULONG byteLength;
        wchar_t name[1024];
    } information = {};
    ULONG size = 0;
    if (!queryKey || queryKey(key.Get(), keyNameInformation, &information, sizeof(information), &size) < 0)
        return {};
    return {information.name, information.byteLength / sizeof(wchar_t)};
}

bool SameName(std::wstring_view left, std::wstring_view right) {
    return CompareStringOrdinal(left.data(), static_cast<int>(left.size()), right.data(),
                                static_cast<int>(right.size()), TRUE) == CSTR_EQUAL;
}

RootPlace PlaceOf(const std::wstring& name) {
    constexpr std::wstring_view user = L"\\REGISTRY\\USER\\";
    constexpr std::wstring_view usual = L"\\REGISTRY\\MACHINE\\SOFTWARE\\Classes";
    if (SameName(std::wstring_view(name).substr(0, user.size()), user))
        return RootPlace::User;
    return name.empty() || SameName(name, usual) ? RootPlace::Usual : RootPlace::Elsewhere;
}

} // namespace

HRESULT RegistryKeyStore::CreateKey(const std::wstring& path) {
    Key key;
    return FromStatus(
        RegCreateKeyExW(HKEY_CLASSES_ROOT, path.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &key, nullptr));
}

HRESULT RegistryKeyStore::SetValue(const std::wstring& path, const std::wstring& name,
                                   const std::wstring& text) {
    Key key;
    if (const HRESULT code = Open(path, KEY_SET_VALUE, key); FAILED(code))
        return code;
    const auto size = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
    return FromStatus(RegSetValueExW(key.Get(), name.c_str(), 0, REG_SZ,
                                     reinterpret_cast<const BYTE*>(text.c_str()), size));
}

HRESULT RegistryKeyStore::DeleteValue(const std::wstring& path, const std::wstring& name) {
    Key key;
    HRESULT code = Open(path, KEY_SET_VALUE, key);
    if (SUCCEEDED(code))
        code = FromStatus(RegDeleteValueW(key.Get(), name.c_str()));
    return OkIfMissing(code);
}

HRESULT RegistryKeyStore::DeleteKey(const std::wstring& path) {
    DWORD subkeys = 0;
    {
        Key key;
        if (const HRESULT code = Open(path, KEY_READ, key); FAILED(code))
            return OkIfMissing(code);
        const HRESULT code =
            FromStatus(RegQueryInfoKeyW(key.Get(), nullptr, nullptr, nullptr, &subkeys, nullptr, nullptr,
                                        nullptr, nullptr, nullptr, nullptr, nullptr));
        if (FAILED(code))
            return code;
    }
    if (subkeys > 0)
        return S_OK;
    return OkIfMissing(FromStatus(RegDeleteKeyW(HKEY_CLASSES_ROOT, path.c_str())));
}

HRESULT RegistryKeyStore::DeleteTree(const std::wstring& path) {
    return OkIfMissing(FromStatus(RegDeleteTreeW(HKEY_CLASSES_ROOT, path.c_str())));
}

bool RegistryKeyStore::Exists(const std::wstring& path) {
    Key key;
    return SUCCEEDED(Open(path, KEY_READ, key));
}

RootPlace PlaceOfTheClassesRoot() {
    Key root;
    // Some systems open no key for an empty path, but return the root's predefined handle, which has no name.
    if (SUCCEEDED(Open(L"", KEY_READ, root)) && root.Get() != HKEY_CLASSES_ROOT)
        return PlaceOf(NameOf(root));
    Key opened;
    return SUCCEEDED(Open(L"\\", KEY_READ, opened)) ? PlaceOf(NameOf(opened)) : RootPlace::Usual;
}

MachineClassesRoot::MachineClassesRoot(RootPlace place) {
    if (place != RootPlace::Usual)
        return;
    Key classes;
    m_result =
        FromStatus(RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"Software\\Classes", 0, MAXIMUM_ALLOWED, &classes));
    if (SUCCEEDED(m_result))
        m_result = FromStatus(RegOverridePredefKey(HKEY_CLASSES_ROOT, classes.Get()));
    m_redirected = SUCCEEDED(m_result);
}

MachineClassesRoot::~MachineClassesRoot() {
    if (m_redirected)
        RegOverridePredefKey(HKEY_CLASSES_ROOT, nullptr);
}

} // namespace vant
