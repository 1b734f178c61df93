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
    std::string what; ///< For messages, such as "the procedure".
    std::filesystem::path path;
};

/// Says why a journal cannot be written to a file.
class JournalFileError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Writes each record as one line of JSON in UTF-8, ended by "\n".
class JournalFile {
public:
    /// Opens the file and empties it. Throws JournalFileError if that fails, if it is one of `inUse` under
    /// any name, or, unless `force`, if it exists and contains anything other than a journal.
    JournalFile(const std::filesystem::path& file, const std::vector<FileInUse>& inUse, bool force);

    /// Flushes each line, so that the journal of a run that is killed is there up to that moment.
    void Write(const Record& record);
    /// Closes the file, and returns whether everything was written.
    bool Close();

private:
    std::ofstream m_out;
};

} // namespace vant::host
