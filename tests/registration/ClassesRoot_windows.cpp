#include "platform/system.h"
#include "tests/registration/ClassesRoot.h"
#include "tests/registration/StatedEntries.h"

#include <string_view>
#include <system_error>
#include <vector>

namespace vant {

struct ClassesRoot::System {};

namespace {

void Check(LSTATUS status, const char* what) {
    if (status != ERROR_SUCCESS)
        throw std::system_error(static_cast<int>(status), std::system_category(), what);
}

/// The names of a key's direct subkeys.
std::vector<std::wstring> SubkeysOf(HKEY key) {
    std::vector<std::wstring> names;
    for (DWORD index = 0;; ++index) {
        wchar_t name[256];
        DWORD length = static_cast<DWORD>(std::size(name));
        const LSTATUS status = RegEnumKeyExW(key, index, name, &length, nullptr, nullptr, nullptr, nullptr);
        if (status == ERROR_NO_MORE_ITEMS)
            return names;
        Check(status, "RegEnumKeyExW");
        names.emplace_back(name, length);
    }
}

std::map<std::wstring, std::wstring> ValuesOf(HKEY key) {
    std::map<std::wstring, std::wstring> values;
    std::vector<wchar_t> data(64 * 1024);
    for (DWORD index = 0;; ++index) {
        wchar_t name[1024];
        DWORD length = static_cast<DWORD>(std::size(name));
        DWORD type = 0;
        DWORD size = static_cast<DWORD>(data.size() * sizeof(wchar_t));
        const LSTATUS status = RegEnumValueW(key, index, name, &length, nullptr, &type,
                                             reinterpret_cast<BYTE*>(data.data()), &size);
        if (status == ERROR_NO_MORE_ITEMS)
            return values;
        Check(status, "RegEnumValueW");
        std::wstring text(data.data(), size / sizeof(wchar_t));
        if (type != REG_SZ)
            text = L"type " + std::to_wstring(type) + L": " + text;
        else if (!text.empty() && text.back() == L'\0')
            text.pop_back();
        values.emplace(std::wstring(name, length), text);
    }
}

/// Adds the key, if there is one, with everything below it.
void Read(const std::wstring& path, Subtree& out) {
    HKEY key = nullptr;
    const LSTATUS status = RegOpenKeyExW(HKEY_CLASSES_ROOT, path.c_str(), 0, KEY_READ, &key);
    if (status == ERROR_FILE_NOT_FOUND)
        return;
    Check(status, "RegOpenKeyExW");
    out[path] = ValuesOf(key);
    const auto names = SubkeysOf(key);
    RegCloseKey(key);
    for (const std::wstring& name : names)
        Read(path + L'\\' + name, out);
}

} // namespace

ClassesRoot::ClassesRoot() = default;
ClassesRoot::~ClassesRoot() = default;

Subtree ClassesRoot::OfTheModule() const {
    Subtree result;
    for (const std::wstring& name : SubkeysOf(HKEY_CLASSES_ROOT)) {
        if (std::wstring_view(name).starts_with(L"VantCommands."))
            Read(name, result);
    }
    for (const StatedClass& stated : StatedClasses())
        Read(std::wstring(L"CLSID\\") + stated.clsid, result);
    const std::wstring library = std::wstring(L"TypeLib\\") + libraryIdText;
    Read(library, result);
    // Whether the flags tell that the library came from a file is the system's own affair.
    if (const auto flags = result.find(library + L"\\1.0\\FLAGS");
        flags != result.end() && flags->second[L""] == L"8")
        flags->second[L""] = L"0";
    return result;
}

Subtree ClassesRoot::Whole() const {
    Subtree result;
    for (const std::wstring& name : SubkeysOf(HKEY_CLASSES_ROOT))
        Read(name, result);
    return result;
}

void ClassesRoot::Set(const std::wstring& path, const std::wstring& name, const std::wstring& text) const {
    const auto size = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
    Check(RegSetKeyValueW(HKEY_CLASSES_ROOT, path.c_str(), name.c_str(), REG_SZ, text.c_str(), size),
          "RegSetKeyValueW");
}

void ClassesRoot::RemoveTree(const std::wstring& path) const {
    Check(RegDeleteTreeW(HKEY_CLASSES_ROOT, path.c_str()), "RegDeleteTreeW");
}

Subtree TypeLibraryEntries(const std::filesystem::path& module) {
    const std::wstring key = std::wstring(L"TypeLib\\") + libraryIdText;
    return {
        {key, {}},
        {key + L"\\1.0", {{L"", L"VantCommands 1.0 Type Library"}}},
        {key + L"\\1.0\\0", {}},
        {key + L"\\1.0\\0\\win64", {{L"", module.wstring()}}},
        {key + L"\\1.0\\FLAGS", {{L"", L"0"}}},
        {key + L"\\1.0\\HELPDIR", {{L"", module.parent_path().wstring()}}},
    };
}

} // namespace vant
