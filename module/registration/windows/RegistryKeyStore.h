#pragma once

#include "module/registration/KeyStore.h"

namespace vant {

/// HKEY_CLASSES_ROOT of this process: the machine's classes, or the user's if the process has redirected
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

/// Where the classes root of this process leads.
enum class RootPlace {
    Usual,    ///< To the machine's classes, with the user's covering them; not redirected.
    User,     ///< To a key in the user's part of the registry: per-user registration is in force.
    Elsewhere ///< To any other key.
};
RootPlace PlaceOfTheClassesRoot();

/// While it lives, a classes root that is not redirected leads to the machine's classes alone. Otherwise,
/// what is written to a key that the user's classes have, too, would go there.
class MachineClassesRoot {
public:
    explicit MachineClassesRoot(RootPlace place);
    ~MachineClassesRoot();
    MachineClassesRoot(const MachineClassesRoot&) = delete;
    MachineClassesRoot& operator=(const MachineClassesRoot&) = delete;

    /// The result of the redirection; S_OK if none was needed.
    HRESULT Result() const { return m_result; }

private:
    bool m_redirected = false;
    HRESULT m_result = S_OK;
};

} // namespace vant
