#pragma once

#include "module/registration/KeyStore.h"
#include "platform/portable/catalogue.h"

namespace vant {

/// A class catalogue as a key store. It works on the caller's catalogue, which outlives it.
class CatalogueKeyStore final : public KeyStore {
public:
    explicit CatalogueKeyStore(Catalogue& catalogue) : m_catalogue(catalogue) {}

    HRESULT CreateKey(const std::wstring& path) override;
    HRESULT SetValue(const std::wstring& path, const std::wstring& name, const std::wstring& text) override;
    HRESULT DeleteValue(const std::wstring& path, const std::wstring& name) override;
    HRESULT DeleteKey(const std::wstring& path) override;
    HRESULT DeleteTree(const std::wstring& path) override;

private:
    Catalogue& m_catalogue;
};

} // namespace vant
