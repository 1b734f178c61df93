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

/// The answer of a registry call as an HRESULT. A function, because the system's macro may look at its
/// argument twice and so make the call twice.
HRESULT FromStatus(LSTATUS status) {
    return HRESULT_FROM_WIN32(static_cast<DWORD>(status));
}

HRESULT Open(const std::wstring& path, REGSAM access, Key& key) {
    return FromStatus(RegOpenKeyExW(HKEY_CLASSES_ROOT, path.c_str(), 0, access, &key));
}

HRESULT OkWhereAbsent(HRESULT code) {
    return code == HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND) ? S_OK : code;
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
    return OkWhereAbsent(code);
}

HRESULT RegistryKeyStore::DeleteKey(const std::wstring& path) {
    DWORD subkeys = 0;
    {
        Key key;
        if (const HRESULT code = Open(path, KEY_READ, key); FAILED(code))
            return OkWhereAbsent(code);
        const HRESULT code =
            FromStatus(RegQueryInfoKeyW(key.Get(), nullptr, nullptr, nullptr, &subkeys, nullptr, nullptr,
                                        nullptr, nullptr, nullptr, nullptr, nullptr));
        if (FAILED(code))
            return code;
    }
    if (subkeys > 0)
        return S_OK;
    return OkWhereAbsent(FromStatus(RegDeleteKeyW(HKEY_CLASSES_ROOT, path.c_str())));
}

HRESULT RegistryKeyStore::DeleteTree(const std::wstring& path) {
    return OkWhereAbsent(FromStatus(RegDeleteTreeW(HKEY_CLASSES_ROOT, path.c_str())));
}

bool RegistryKeyStore::Exists(const std::wstring& path) {
    Key key;
    return SUCCEEDED(Open(path, KEY_READ, key));
}

bool LiesInUsersPart(const wchar_t* path) {
    // Nothing else tells a redirected root: the root itself has only its predefined handle, but the system's
    // own name of a key below it begins where that key really lies.
    using QueryKey = NTSTATUS NTAPI(HANDLE, int, void*, ULONG, ULONG*);
    constexpr int keyNameInformation = 3;
    constexpr std::wstring_view userPart = L"\\REGISTRY\\USER\\";

    const HMODULE ntdll = GetModuleHandleW(L"ntdll.dll");
    const auto queryKey =
        ntdll ? reinterpret_cast<QueryKey*>(reinterpret_cast<void*>(GetProcAddress(ntdll, "NtQueryKey")))
              : nullptr;
    Key key;
    if (!queryKey || FAILED(Open(path, KEY_READ, key)))
        return false;
    struct {
        ULONG byteLength;
        wchar_t name[1024];
    } information = {};
    ULONG size = 0;
    if (queryKey(key.Get(), keyNameInformation, &information, sizeof(information), &size) < 0)
        return false;
    const std::wstring_view name(information.name, information.byteLength / sizeof(wchar_t));
    return name.size() >= userPart.size() &&
           CompareStringOrdinal(name.data(), static_cast<int>(userPart.size()), userPart.data(),
                                static_cast<int>(userPart.size()), TRUE) == CSTR_EQUAL;
}

} // namespace vant
