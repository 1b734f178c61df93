#pragma once

#include "platform/system.h"

#include <string>

namespace vant {

/// The classes root of the system's registry, or what stands in its place. Keys are named by their path below
/// the root, parts separated by backslashes. Each operation returns S_OK or the failure of the system.
class KeyStore {
public:
    virtual ~KeyStore() = default;

    /// Creates the key and the keys above it; one that exists stays as it is.
    virtual HRESULT CreateKey(const std::wstring& path) = 0;
    /// Writes a text value of an existing key; an empty name means the key's default value.
    virtual HRESULT SetValue(const std::wstring& path, const std::wstring& name,
                             const std::wstring& text) = 0;
    /// Removes a value; S_OK if there is none.
    virtual HRESULT DeleteValue(const std::wstring& path, const std::wstring& name) = 0;
    /// Removes the key and its values unless it has subkeys; S_OK also if it has, and if there is no such
    /// key.
    virtual HRESULT DeleteKey(const std::wstring& path) = 0;
    /// Removes the key with everything below it; S_OK if there is no such key.
    virtual HRESULT DeleteTree(const std::wstring& path) = 0;
};

} // namespace vant
