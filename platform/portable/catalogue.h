#pragma once

#include "platform/portable/types.h"

#include <chrono>
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
    /// VantCommands/catalogue.txt in $XDG_DATA_HOME, else in ~/.local/share. Throws std::runtime_error if
    /// none of the three variables (the last is HOME) is set.
    static std::filesystem::path File();

    /// Reads a catalogue; a missing file is an empty one. Throws std::runtime_error with the file if it
    /// cannot be read or is not a regular file, and with the line if one is malformed.
    static Catalogue Read(const std::filesystem::path& file);

    /// Reads the catalogue, lets `change` work on it and replaces the file as a whole; an empty catalogue has
    /// no file. A link stays, and leads to the new file; the mode of the file stays. Other writers wait
    /// meanwhile, as long as their patience lasts; readers see the old file or the new one. Throws
    /// std::runtime_error if the file cannot be read, locked or written, and what `change` throws; the old
    /// file then stays.
    static void Change(const std::filesystem::path& file, const std::function<void(Catalogue&)>& change,
                       std::chrono::milliseconds patience = std::chrono::seconds(10));

    const Keys& All() const { return m_keys; }
    /// A value's text; null if there is no such value.
    const std::wstring* Find(const std::wstring& key, const std::wstring& name) const;

    /// Names must not be empty or hold control characters; a value may hold anything but nulls.
    static bool IsKeyName(std::wstring_view path);
    void Set(const std::wstring& key, const std::wstring& name, const std::wstring& value);
    void Erase(const std::wstring& key, const std::wstring& name);
    bool HasSubkeys(const std::wstring& key) const;
    void EraseKey(const std::wstring& key);
    void EraseTree(const std::wstring& key);

private:
    static Catalogue Parse(std::string_view text, const std::filesystem::path& file);
    std::string ToText() const;

    Keys m_keys;
};

} // namespace vant
