#pragma once

#include "platform/portable/types.h"

#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace vant {

/// The class catalogue: what the registry's classes root is on Windows. Keys are named by their path, parts
/// separated by backslashes; each holds text values by name, the default value under the empty name. Letter
/// case does not distinguish names. A key exists while it, or a key below it, has a value.
///
/// The file is UTF-8 text, one line `[KEY]`, `@="DEFAULT VALUE"` or `"NAME"="VALUE"` each, with \\, \" and \n
/// inside the quotes; `#` begins a comment line.
class VANT_PLATFORM_API Catalogue {
public:
    struct NameLess {
        bool operator()(const std::wstring& left, const std::wstring& right) const;
    };
    using Values = std::map<std::wstring, std::wstring, NameLess>;
    using Keys = std::map<std::wstring, Values, NameLess>;

    /// The user's catalogue: the file that the environment variable VANT_CATALOGUE names, else
    /// VantCommands/catalogue.txt in $XDG_DATA_HOME, else in ~/.local/share. Throws std::runtime_error where
    /// none of the three variables (the last is HOME) is set.
    static std::filesystem::path File();

    /// Reads a catalogue; an absent file is an empty one. Throws std::runtime_error, with the line where one
    /// is wrong.
    static Catalogue Read(const std::filesystem::path& file);

    /// Reads the catalogue, lets `change` work on it and replaces the file as a whole; an empty catalogue has
    /// no file. Other writers wait meanwhile, readers see the old file or the new one. Throws
    /// std::runtime_error where it cannot be read or written, and what `change` throws; the old file then
    /// stays.
    static void Change(const std::filesystem::path& file, const std::function<void(Catalogue&)>& change);

    const Keys& All() const { return m_keys; }
    /// A value's text; null where there is none.
    const std::wstring* Find(const std::wstring& key, const std::wstring& name) const;

    /// Names must not be empty or hold control characters; a value may hold anything but nulls.
    static bool IsKeyName(std::wstring_view path);
    void Set(const std::wstring& key, const std::wstring& name, const std::wstring& value);
    void Erase(const std::wstring& key, const std::wstring& name);
    bool HasSubkeys(const std::wstring& key) const;
    void EraseKey(const std::wstring& key);
    void EraseTree(const std::wstring& key);

private:
    std::string ToText() const;

    Keys m_keys;
};

} // namespace vant
