#include "host/record/JournalFile.h"

#include "host/record/Json.h"

#include <cerrno>
#include <string_view>
#include <system_error>

namespace vant::host {

namespace {

/// What every journal begins with: the first key of its first record.
constexpr std::string_view beginning = "{\"time\":";

bool HoldsSomethingElse(const std::filesystem::path& file) {
    std::error_code unknown;
    if (!std::filesystem::is_regular_file(file, unknown))
        return false;
    std::ifstream in(file, std::ios::binary);
    std::string content(beginning.size(), '\0');
    in.read(content.data(), static_cast<std::streamsize>(content.size()));
    content.resize(static_cast<std::size_t>(in.gcount()));
    return !content.empty() && content != beginning;
}

void CheckNotInUse(const std::filesystem::path& file, const std::vector<FileInUse>& inUse) {
    for (const FileInUse& each : inUse) {
        std::error_code unknown;
        if (std::filesystem::equivalent(file, each.path, unknown))
            throw JournalFileError("the journal would overwrite " + each.what);
    }
}

} // namespace

JournalFile::JournalFile(const std::filesystem::path& file, const std::vector<FileInUse>& inUse, bool force) {
    CheckNotInUse(file, inUse);
    if (!force && HoldsSomethingElse(file))
        throw JournalFileError("the file exists and is not a journal; --force overwrites it");
    errno = 0;
    m_out.open(file, std::ios::binary | std::ios::trunc);
    if (!m_out)
        throw JournalFileError("cannot write the journal: " +
                               std::generic_category().message(errno ? errno : EIO));
}

void JournalFile::Write(const Record& record) {
    JsonLinesWriter{m_out}(record);
}

bool JournalFile::Close() {
    m_out.close();
    return !m_out.fail();
}

} // namespace vant::host
