#pragma once

#include <fstream>
#include <string>

namespace vant::program {

/// A file that the user has named for a report.
class ReportFile {
public:
    /// Opens the file, whose name is UTF-8, and empties it. Throws Failure if that fails, or if it is a TOML
    /// file, which the user has written and not a program.
    explicit ReportFile(const std::string& name);

    /// Writes the whole report. Throws Failure.
    void Write(const std::string& text);

private:
    const std::string m_name;
    std::ofstream m_out;
};

} // namespace vant::program
