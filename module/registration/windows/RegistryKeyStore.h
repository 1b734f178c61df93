#pragma once

#include "module/registration/KeyStore.h"

namespace vant {

/// HKEY_CLASSES_ROOT of this process: the machine's classes, or the user's where the process has redirected
/// the root (RegOverridePredefKey), as per-user registration does.
class RegistryKeyStore final : public KeyStore {
public:
    HRESULT CreateKey(const std::wstring& path) override;
    HRESULT SetValue(const std::wstring& path, const std::wstring& name, const std::wstring& text) override;
    HRESULT DeleteValue(const std::wstring& path, const std::wstring& name) override;
    HRESULT DeleteKey(const std::wstring& path) override;
    HRESULT DeleteTree(const std::wstring& path) override;

    /// Whether there is such a key and it may be read.
    static bool Exists(const std::wstring& path);
};

/// Whether that key of the classes root lies in a user's part of the registry. For a key that this process
/// has written, this tells whether per-user registration is in force.
bool LiesInUsersPart(const wchar_t* path);

} // namespace vant
