#include "framework/interfaces/ClassIds.h"
#include "platform/portable/catalogue.h"
#include "tests/registration/ClassesRoot.h"
#include "tests/registration/StatedEntries.h"
#include "tests/support/TemporaryFolder.h"

#include <cstdlib>

namespace vant {

struct ClassesRoot::System {
    TemporaryFolder folder;
};

ClassesRoot::ClassesRoot() : m_system(std::make_unique<System>()) {
    setenv("VANT_CATALOGUE", (m_system->folder.Path() / "catalogue.txt").c_str(), 1);
}

ClassesRoot::~ClassesRoot() {
    unsetenv("VANT_CATALOGUE");
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
