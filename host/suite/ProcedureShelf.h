#pragma once

#include "host/procedure/Loading.h"

#include <map>
#include <string>
#include <utility>

namespace vant::host {

/// Procedures together with the engines that they are to run on, each pair of files read once.
class ProcedureShelf {
public:
    /// As LoadProcedure, whose arguments these are. The reference stays valid as long as the shelf.
    LoadedProcedure& Get(const std::string& file, const std::string& engineFile) {
        const auto key = std::pair(file, engineFile);
        const auto found = m_loaded.find(key);
        return found != m_loaded.end() ? found->second
                                       : m_loaded.emplace(key, LoadProcedure(file, engineFile)).first->second;
    }

    const std::map<std::pair<std::string, std::string>, LoadedProcedure>& All() const noexcept {
        return m_loaded;
    }

private:
    std::map<std::pair<std::string, std::string>, LoadedProcedure> m_loaded;
};

} // namespace vant::host
