#include "framework/interfaces/ClassIds.h"
#include "platform/portable/catalogue.h"
#include "tests/registration/ClassesRoot.h"
#include "tests/registration/StatedEntries.h"

#include <cstdlib>

namespace vant {

struct ClassesRoot::System {
    std::filesystem::path folder;
};

ClassesRoot::ClassesRoot() : m_system(std::make_unique<System>()) {
    std::string pattern = (std::filesystem::temp_directory_path() / "classes_rootXXXXXX").string();
    if (!mkdtemp(pattern.data()))
        throw std::filesystem::filesystem_error("no temporary folder", pattern,
                                                std::error_code(errno, std::generic_category()));
    m_system->folder = pattern;
    setenv("VANT_CATALOGUE", (m_system->folder / "catalogue.txt").c_str(), 1);
}

ClassesRoot::~ClassesRoot() {
    unsetenv("VANT_CATALOGUE");
    std::error_code ignored;
    std::filesystem::remove_all(m_system->folder, ignored);
}

Subtree ClassesRoot::OfTheModule() const {
    Subtree result = Whole();
    std::erase_if(result, [](const auto& entry) {
        const std::wstring& path = entry.first;
        if (path.starts_with(L"VantCommands.") ||
            path.starts_with(std::wstring(L"TypeLib\\") + libraryIdText))
            return false;
        for (const StatedClass& stated : StatedClasses()) {
            if (path.starts_with(std::wstring(L"CLSID\\") + stated.clsid))
                return false;
        }
        return true;
    });
    return result;
}

Subtree ClassesRoot::Whole() const {
    Subtree result;
    const Catalogue catalogue = Catalogue::Read(Catalogue::File());
    for (const auto& [key, values] : catalogue.All())
        result[key].insert(values.begin(), values.end());
    return result;
}

void ClassesRoot::Set(const std::wstring& path, const std::wstring& name, const std::wstring& text) const {
    Catalogue::Change(Catalogue::File(), [&](Catalogue& catalogue) { catalogue.Set(path, name, text); });
}

void ClassesRoot::RemoveTree(const std::wstring& path) const {
    Catalogue::Change(Catalogue::File(), [&path](Catalogue& catalogue) { catalogue.EraseTree(path); });
}

Subtree TypeLibraryEntries(const std::filesystem::path& /*module*/) {
    return {}; // type libraries are a thing of Windows
}

} // namespace vant
