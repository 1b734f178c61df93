#pragma once

#include "module/registration/KeyStore.h"

#include <map>
#include <string>
#include <vector>

namespace vant {

/// Records every operation, keeps what was written, and fails at one path if it is told to.
class FakeKeyStore final : public KeyStore {
public:
    std::map<std::wstring, std::map<std::wstring, std::wstring>> keys;
    std::vector<std::wstring> operations;
    std::wstring failAt;
    HRESULT failure = E_ACCESSDENIED;

    HRESULT CreateKey(const std::wstring& path) override {
        if (!Begin(L"create " + path, path))
            return failure;
        keys[path];
        return S_OK;
    }
    HRESULT SetValue(const std::wstring& path, const std::wstring& name, const std::wstring& text) override {
        if (!Begin(L"set " + path + L" [" + name + L"] " + text, path))
            return failure;
        keys[path][name] = text;
        return S_OK;
    }
    HRESULT DeleteValue(const std::wstring& path, const std::wstring& name) override {
        if (!Begin(L"unset " + path + L" [" + name + L"]", path))
            return failure;
        if (const auto key = keys.find(path); key != keys.end())
            key->second.erase(name);
        return S_OK;
    }
    HRESULT DeleteKey(const std::wstring& path) override {
        if (!Begin(L"delete " + path, path))
            return failure;
        const auto below = keys.lower_bound(path + L'\\');
        if (below == keys.end() || !below->first.starts_with(path + L'\\'))
            keys.erase(path);
        return S_OK;
    }
    HRESULT DeleteTree(const std::wstring& path) override {
        if (!Begin(L"delete tree " + path, path))
            return failure;
        std::erase_if(keys, [&path](const auto& key) {
            return key.first == path || key.first.starts_with(path + L'\\');
        });
        return S_OK;
    }

private:
    bool Begin(const std::wstring& operation, const std::wstring& path) {
        operations.push_back(operation);
        return path != failAt;
    }
};

} // namespace vant
