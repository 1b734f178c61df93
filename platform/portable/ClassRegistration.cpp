#include "platform/ClassRegistration.h"

#include "platform/portable/catalogue.h"

#include <exception>

namespace vant {

HRESULT RegisterForUserOnly() {
    return S_OK;
}

std::optional<std::wstring> RegisteredModule(const std::wstring& classIdText) {
    try {
        const Catalogue catalogue = Catalogue::Read(Catalogue::File());
        const std::wstring* const module =
            catalogue.Find(L"CLSID\\" + classIdText + L"\\InprocServer32", L"");
        return module ? std::optional(*module) : std::nullopt;
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

} // namespace vant
