#pragma once

#include "host/record/Journal.h"

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace vant::host {

/// A file that a run uses, which its journal must not overwrite.
struct FileInUse {
    std::string what; ///< As in "the procedure".
    std::filesystem::path path;
};

/// A journal cannot be written to a file; the text is the reason.
class JournalFileError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Writes each record as one line of JSON in UTF-8, ended by "\n".
class JournalFile {
public:
    /// Opens the file and empties it. Throws JournalFileError if that fails, if it is one of `inUse`, under
    /// whatever name, or, unless `force`, if it exists and holds anything but a journal.
    JournalFile(const std::filesystem::path& file, const std::vector<FileInUse>& inUse, bool force);

    /// Each line leaves the program at once: it is what remains of a run that was killed.
    void Write(const Record& record);
    /// Closes the file; whether everything was written.
    bool Close();

private:
    std::ofstream m_out;
};

} // namespace vant::host
