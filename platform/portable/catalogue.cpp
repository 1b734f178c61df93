#include "platform/portable/catalogue.h"

#include "platform/Utf8.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <sys/file.h>
#include <system_error>
#include <unistd.h>

namespace vant {

namespace {

constexpr std::string_view banner =
    "# Class catalogue of VantCommands. Modules write it when they are registered.\n";

wchar_t Fold(wchar_t c) {
    return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c - L'A' + L'a') : c;
}

bool EqualNames(std::wstring_view left, std::wstring_view right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](wchar_t a, wchar_t b) { return Fold(a) == Fold(b); });
}

bool IsBelow(std::wstring_view path, std::wstring_view key) {
    return path.size() > key.size() && path[key.size()] == L'\\' &&
           EqualNames(path.substr(0, key.size()), key);
}

[[noreturn]] void FailWith(const std::filesystem::path& file, int error) {
    throw std::runtime_error(file.string() + ": " + std::generic_category().message(error));
}

/// An open file descriptor.
class Descriptor {
public:
    Descriptor(const std::filesystem::path& file, int flags)
        : m_file(file), m_number(open(file.c_str(), flags, 0644)) {
        if (m_number < 0)
            FailWith(file, errno);
    }
    ~Descriptor() { close(m_number); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    void LockAgainstOthers() const { Check(flock(m_number, LOCK_EX)); }
    void WriteAll(std::string_view text) const {
        while (!text.empty()) {
            const ssize_t count = write(m_number, text.data(), text.size());
            if (count < 0 && errno == EINTR)
                continue;
            if (count < 0)
                FailWith(m_file, errno);
            text.remove_prefix(static_cast<std::size_t>(count));
        }
        Check(fsync(m_number));
    }

private:
    void Check(int result) const {
        if (result != 0)
            FailWith(m_file, errno);
    }

    const std::filesystem::path& m_file;
    int m_number;
};

void AppendQuoted(std::string& out, std::wstring_view text) {
    out += '"';
    for (const char c : ToUtf8(text)) {
        if (c == '\\' || c == '"')
            out += '\\';
        if (c == '\n')
            out += "\\n";
        else
            out += c;
    }
    out += '"';
}

/// Takes a quoted text from the front of `line`.
std::optional<std::wstring> TakeQuoted(std::string_view& line) {
    if (line.empty() || line.front() != '"')
        return std::nullopt;
    std::string text;
    for (std::size_t i = 1; i < line.size(); ++i) {
        if (line[i] == '"') {
            line.remove_prefix(i + 1);
            return ToWide(text);
        }
        const bool escaped = line[i] == '\\' && i + 1 < line.size();
        if (escaped)
            ++i;
        text += escaped && line[i] == 'n' ? '\n' : line[i];
    }
    return std::nullopt;
}

/// Whether the line is `@="VALUE"` or `"NAME"="VALUE"`; gives both.
bool ParseValue(std::string_view line, std::wstring& name, std::wstring& value) {
    name.clear();
    if (line.starts_with('@')) {
        line.remove_prefix(1);
    } else {
        const auto quoted = TakeQuoted(line);
        if (!quoted || quoted->empty())
            return false;
        name = *quoted;
    }
    if (!line.starts_with('='))
        return false;
    line.remove_prefix(1);
    const auto quoted = TakeQuoted(line);
    if (!quoted || !line.empty())
        return false;
    value = *quoted;
    return true;
}

} // namespace

bool Catalogue::NameLess::operator()(const std::wstring& left, const std::wstring& right) const {
    return std::lexicographical_compare(left.begin(), left.end(), right.begin(), right.end(),
                                        [](wchar_t a, wchar_t b) { return Fold(a) < Fold(b); });
}

std::filesystem::path Catalogue::File() {
    const auto variable = [](const char* name) -> std::filesystem::path {
        const char* const value = std::getenv(name);
        return value ? value : "";
    };
    if (auto file = variable("VANT_CATALOGUE"); !file.empty())
        return file;
    auto folder = variable("XDG_DATA_HOME");
    if (folder.empty()) {
        if (folder = variable("HOME"); folder.empty())
            throw std::runtime_error("no class catalogue: set VANT_CATALOGUE to its file");
        folder = folder / ".local" / "share";
    }
    return folder / "VantCommands" / "catalogue.txt";
}

Catalogue Catalogue::Read(const std::filesystem::path& file) {
    Catalogue catalogue;
    std::error_code error;
    if (!std::filesystem::exists(file, error)) {
        if (error)
            FailWith(file, error.value());
        return catalogue;
    }
    std::ifstream in(file, std::ios::binary);
    if (!in)
        FailWith(file, errno);
    std::optional<std::wstring> key;
    std::size_t number = 0;
    for (std::string line; std::getline(in, line);) {
        ++number;
        std::wstring name;
        std::wstring value;
        if (line.empty() || line.front() == '#') {
            continue;
        } else if (line.size() > 2 && line.front() == '[' && line.back() == ']') {
            key = ToWide(std::string_view(line).substr(1, line.size() - 2));
        } else if (key && ParseValue(line, name, value)) {
            catalogue.Set(*key, name, value);
        } else {
            throw std::runtime_error(file.string() + ":" + std::to_string(number) +
                                     ": not a line of a class catalogue");
        }
    }
    if (in.bad())
        FailWith(file, EIO);
    return catalogue;
}

void Catalogue::Change(const std::filesystem::path& file, const std::function<void(Catalogue&)>& change) {
    const auto folder = std::filesystem::absolute(file).parent_path();
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error)
        FailWith(folder, error.value());
    const Descriptor writers(folder, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    writers.LockAgainstOthers();

    Catalogue catalogue = Read(file);
    change(catalogue);
    const auto text = catalogue.ToText();
    if (text.empty()) {
        std::filesystem::remove(file, error);
        if (error)
            FailWith(file, error.value());
        return;
    }
    auto replacement = file;
    replacement += ".new";
    try {
        Descriptor(replacement, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC).WriteAll(text);
        std::filesystem::rename(replacement, file);
    } catch (...) {
        std::filesystem::remove(replacement, error);
        throw;
    }
}

const std::wstring* Catalogue::Find(const std::wstring& key, const std::wstring& name) const {
    const auto values = m_keys.find(key);
    if (values == m_keys.end())
        return nullptr;
    const auto value = values->second.find(name);
    return value == values->second.end() ? nullptr : &value->second;
}

bool Catalogue::IsKeyName(std::wstring_view path) {
    return !path.empty() && std::none_of(path.begin(), path.end(), [](wchar_t c) { return c < L' '; });
}

void Catalogue::Set(const std::wstring& key, const std::wstring& name, const std::wstring& value) {
    m_keys[key][name] = value;
}

void Catalogue::Erase(const std::wstring& key, const std::wstring& name) {
    const auto values = m_keys.find(key);
    if (values == m_keys.end())
        return;
    values->second.erase(name);
    if (values->second.empty())
        m_keys.erase(values);
}

bool Catalogue::HasSubkeys(const std::wstring& key) const {
    return std::any_of(m_keys.begin(), m_keys.end(),
                       [&key](const auto& each) { return IsBelow(each.first, key); });
}

void Catalogue::EraseKey(const std::wstring& key) {
    m_keys.erase(key);
}

void Catalogue::EraseTree(const std::wstring& key) {
    m_keys.erase(key);
    std::erase_if(m_keys, [&key](const auto& each) { return IsBelow(each.first, key); });
}

std::string Catalogue::ToText() const {
    std::string text;
    for (const auto& [key, values] : m_keys) {
        text += text.empty() ? std::string(banner) + "\n[" : "\n[";
        text += ToUtf8(key) + "]\n";
        for (const auto& [name, value] : values) {
            if (name.empty())
                text += '@';
            else
                AppendQuoted(text, name);
            text += '=';
            AppendQuoted(text, value);
            text += '\n';
        }
    }
    return text;
}

} // namespace vant
