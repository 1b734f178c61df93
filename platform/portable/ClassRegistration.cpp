#include "platform/ClassRegistration.h"

#include "platform/portable/catalogue.h"

#include <stdexcept>

namespace vant {

HRESULT RegisterForUserOnly() {
    return S_OK;
}

std::vector<std::optional<std::wstring>> RegisteredModules(const std::vector<std::wstring>& classIds) {
    const Catalogue catalogue = Catalogue::Read(Catalogue::File());
    std::vector<std::optional<std::wstring>> modules;
    modules.reserve(classIds.size());
    for (const std::wstring& classId : classIds) {
        const std::wstring* const module = catalogue.Find(L"CLSID\\" + classId + L"\\InprocServer32", L"");
        modules.push_back(module ? std::optional(*module) : std::nullopt);
    }
    return modules;
}

std::optional<std::filesystem::path> ClassCatalogueFile() {
    try {
        return Catalogue::File();
    } catch (const std::runtime_error&) {
        return std::nullopt;
    }
}

} // namespace vant
