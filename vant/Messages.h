#pragma once

#include "host/procedure/Loading.h"
#include "host/record/Json.h"

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace vant::program {

/// The messages about all files. Several procedures may use one file, about which everything is said once.
class Messages {
public:
    void Add(const host::LoadedFiles& files);

    std::size_t Errors() const { return m_errors; }
    std::size_t Warnings() const { return m_warnings; }

    /// As lines of text.
    std::string Print() const;

    /// `given` are the files that are listed even without a message.
    host::Json ToJson(const std::vector<std::string>& given) const;

private:
    struct File {
        std::string name;
        host::Diagnostics found;
    };

    void Add(const host::LoadedFile& file, host::Diagnostics& found);

    std::vector<File> m_files;
    std::map<std::string, std::size_t> m_numbers; ///< Of files in `m_files`, by name.
    std::set<std::string> m_said;
    std::size_t m_errors = 0;
    std::size_t m_warnings = 0;
};

} // namespace vant::program
