#include "vant/ReportFile.h"

#include "platform/Utf8.h"
#include "vant/ExitCode.h"

#include <cerrno>
#include <filesystem>
#include <system_error>

namespace vant::program {

ReportFile::ReportFile(const std::string& name) : m_name(name) {
    const std::filesystem::path file = PathFromUtf8(name);
    if (file.extension() == ".toml")
        throw Failure(ExitCode::WrongInput, name + ": a report does not overwrite a TOML file");
    errno = 0;
    m_out.open(file, std::ios::binary | std::ios::trunc);
    if (!m_out)
        throw Failure(ExitCode::WrongInput, name + ": cannot write the report: " +
                                                std::generic_category().message(errno ? errno : EIO));
}

void ReportFile::Write(const std::string& text) {
    m_out << text;
    m_out.close();
    if (!m_out)
        throw Failure(ExitCode::Broken, m_name + ": the report could not be written completely");
}

} // namespace vant::program
