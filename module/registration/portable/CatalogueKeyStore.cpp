#include "module/registration/portable/CatalogueKeyStore.h"

namespace vant {

HRESULT CatalogueKeyStore::CreateKey(const std::wstring& path) {
    return Catalogue::IsKeyName(path) ? S_OK : E_INVALIDARG; // a key stands in the file with its first value
}

HRESULT CatalogueKeyStore::SetValue(const std::wstring& path, const std::wstring& name,
                                    const std::wstring& text) {
    m_catalogue.Set(path, name, text);
    return S_OK;
}

HRESULT CatalogueKeyStore::DeleteValue(const std::wstring& path, const std::wstring& name) {
    m_catalogue.Erase(path, name);
    return S_OK;
}

HRESULT CatalogueKeyStore::DeleteKey(const std::wstring& path) {
    if (!m_catalogue.HasSubkeys(path))
        m_catalogue.EraseKey(path);
    return S_OK;
}

HRESULT CatalogueKeyStore::DeleteTree(const std::wstring& path) {
    m_catalogue.EraseTree(path);
    return S_OK;
}

} // namespace vant
