#include "platform/portable/catalogue.h"

#include "platform/Utf8.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <optional>
#include <stdexcept>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>

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

/// An open file descriptor. The path must outlive it.
class Descriptor {
public:
    /// Throws if the file cannot be opened.
    static Descriptor Open(const std::filesystem::path& file, int flags) {
        const int number = open(file.c_str(), flags | O_CLOEXEC, 0644);
        if (number < 0)
            FailWith(file, errno);
        return {file, number};
    }
    /// Nothing if the file does not exist.
    static std::optional<Descriptor> OpenIfExists(const std::filesystem::path& file, int flags) {
        const int number = open(file.c_str(), flags | O_CLOEXEC);
        if (number >= 0)
            return Descriptor(file, number);
        if (errno != ENOENT && errno != ENOTDIR)
            FailWith(file, errno);
        return std::nullopt;
    }
    Descriptor(Descriptor&& other) noexcept
        : m_file(other.m_file), m_number(std::exchange(other.m_number, -1)) {}
    ~Descriptor() {
        if (m_number >= 0)
            close(m_number);
    }
    Descriptor& operator=(Descriptor&&) = delete;

    struct stat Status() const {
        struct stat status = {};
        Check(fstat(m_number, &status));
        return status;
    }
    /// Whether the descriptor, and no other one, now has the lock of its file.
    bool TryToLock() const {
        if (flock(m_number, LOCK_EX | LOCK_NB) == 0)
            return true;
        if (errno != EWOULDBLOCK && errno != EINTR)
            FailWith(m_file, errno);
        return false;
    }
    std::string ReadAll() const {
        std::string text;
        char part[16 * 1024];
        for (;;) {
            const ssize_t count = read(m_number, part, sizeof(part));
            if (count < 0 && errno == EINTR)
                continue;
            if (count < 0)
                FailWith(m_file, errno);
            if (count == 0)
                return text;
            text.append(part, static_cast<std::size_t>(count));
        }
    }
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
    /// Gives the file the mode of another, and its owner if this process may.
    void TakeModeOf(const struct stat& other) const {
        [[maybe_unused]] const int ownerStays = fchown(m_number, other.st_uid, other.st_gid);
        Check(fchmod(m_number, other.st_mode & 07777));
    }

private:
    Descriptor(const std::filesystem::path& file, int number) : m_file(file), m_number(number) {}
    void Check(int result) const {
        if (result != 0)
            FailWith(m_file, errno);
    }

    const std::filesystem::path& m_file;
    int m_number;
};

/// The catalogue's file, open to be read; nothing if it does not exist. Only a regular file is a catalogue.
std::optional<Descriptor> OpenCatalogue(const std::filesystem::path& file) {
    // Without O_NONBLOCK, opening a pipe would wait for somebody to write to it.
    auto opened = Descriptor::OpenIfExists(file, O_RDONLY | O_NONBLOCK | O_NOCTTY);
    if (opened && !S_ISREG(opened->Status().st_mode))
        throw std::runtime_error(file.string() + ": not a regular file");
    return opened;
}

/// The file that a path leads to in the end, if it is a link; that file need not exist.
std::filesystem::path FollowLinks(std::filesystem::path file) {
    constexpr int mostLinks = 40;
    for (int links = 0; std::filesystem::is_symlink(std::filesystem::symlink_status(file)); ++links) {
        if (links == mostLinks)
            FailWith(file, ELOOP);
        file = file.parent_path() / std::filesystem::read_symlink(file);
    }
    return file;
}

void LockAgainstOtherWriters(const Descriptor& folder, const std::filesystem::path& file,
                             std::chrono::milliseconds patience) {
    const auto end = std::chrono::steady_clock::now() + patience;
    while (!folder.TryToLock()) {
        if (std::chrono::steady_clock::now() >= end)
            throw std::runtime_error(file.string() +
                                     ": another program has kept the catalogue's folder locked for " +
                                     std::to_string(patience.count()) + " ms");
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

/// Replaces the file as a whole. `former`: the state of the file that is replaced, if there is one. Only for
/// the writer that has the lock.
void Replace(const std::filesystem::path& file, const std::string& text,
             const std::optional<struct stat>& former) {
    auto replacement = file;
    replacement += ".new";
    // What stands there is left over from a writer that came to a sudden end, or was put there by somebody
    // else.
    if (unlink(replacement.c_str()) != 0 && errno != ENOENT)
        FailWith(replacement, errno);
    const auto written = Descriptor::Open(replacement, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW);
    try {
        if (former)
            written.TakeModeOf(*former);
        written.WriteAll(text);
        std::filesystem::rename(replacement, file);
    } catch (...) {
        unlink(replacement.c_str());
        throw;
    }
}

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

/// Whether the line is `@="VALUE"` or `"NAME"="VALUE"`; returns both.
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
    const auto opened = OpenCatalogue(file);
    return opened ? Parse(opened->ReadAll(), file) : Catalogue();
}

Catalogue Catalogue::Parse(std::string_view text, const std::filesystem::path& file) {
    Catalogue catalogue;
    std::optional<std::wstring> key;
    for (std::size_t number = 1; !text.empty(); ++number) {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        std::wstring name;
        std::wstring value;
        if (line.empty() || line.front() == '#') {
            continue;
        } else if (line.size() > 2 && line.front() == '[' && line.back() == ']') {
            key = ToWide(line.substr(1, line.size() - 2));
        } else if (key && ParseValue(line, name, value)) {
            catalogue.Set(*key, name, value);
        } else {
            throw std::runtime_error(file.string() + ":" + std::to_string(number) +
                                     ": not a line of a class catalogue");
        }
    }
    return catalogue;
}

void Catalogue::Change(const std::filesystem::path& name, const std::function<void(Catalogue&)>& change,
                       std::chrono::milliseconds patience) {
    const auto file = FollowLinks(std::filesystem::absolute(name));
    const auto folder = file.parent_path();
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error)
        FailWith(folder, error.value());
    const auto writers = Descriptor::Open(folder, O_RDONLY | O_DIRECTORY);
    LockAgainstOtherWriters(writers, file, patience);

    Catalogue catalogue;
    std::optional<struct stat> former;
    if (const auto opened = OpenCatalogue(file)) {
        former = opened->Status();
        catalogue = Parse(opened->ReadAll(), file);
    }
    change(catalogue);
    if (const auto text = catalogue.ToText(); !text.empty())
        Replace(file, text, former);
    else if (unlink(file.c_str()) != 0 && errno != ENOENT)
        FailWith(file, errno);
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
