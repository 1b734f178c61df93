#include "platform/ClassRegistration.h"

#include <vector>

namespace vant {

HRESULT RegisterForUserOnly() {
    HKEY classes = nullptr;
    LSTATUS status = RegCreateKeyExW(HKEY_CURRENT_USER, L"Software\\Classes", 0, nullptr, 0, KEY_ALL_ACCESS,
                                     nullptr, &classes, nullptr);
    if (status == ERROR_SUCCESS) {
        status = RegOverridePredefKey(HKEY_CLASSES_ROOT, classes);
        RegCloseKey(classes);
    }
    return HRESULT_FROM_WIN32(static_cast<DWORD>(status));
}

namespace {

std::optional<std::wstring> TextIn(HKEY root, const std::wstring& key) {
    DWORD size = 0;
    if (RegGetValueW(root, key.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, nullptr, &size) != ERROR_SUCCESS)
        return std::nullopt;
    std::vector<wchar_t> text(size / sizeof(wchar_t) + 1);
    if (RegGetValueW(root, key.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, text.data(), &size) != ERROR_SUCCESS)
        return std::nullopt;
    return std::wstring(text.data());
}

std::optional<std::wstring> RegisteredModule(const std::wstring& classId) {
    const std::wstring key = L"CLSID\\" + classId + L"\\InprocServer32";
    // The user's own part covers the machine's. Not every system shows the two as one.
    const auto users = TextIn(HKEY_CURRENT_USER, L"Software\\Classes\\" + key);
    return users ? users : TextIn(HKEY_CLASSES_ROOT, key);
}

} // namespace

std::vector<std::optional<std::wstring>> RegisteredModules(const std::vector<std::wstring>& classIds) {
    std::vector<std::optional<std::wstring>> modules;
    modules.reserve(classIds.size());
    for (const std::wstring& classId : classIds)
        modules.push_back(RegisteredModule(classId));
    return modules;
}

std::optional<std::filesystem::path> ClassCatalogueFile() {
    return std::nullopt;
}

} // namespace vant
