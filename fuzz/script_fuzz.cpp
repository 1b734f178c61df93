// Registration scripts of any content, run in both directions against a store that keeps nothing.

#include "module/registration/Script.h"
#include "platform/portable/testing.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

class CheckingStore final : public vant::KeyStore {
public:
    HRESULT CreateKey(const std::wstring& path) override { return Check(path); }
    HRESULT SetValue(const std::wstring& path, const std::wstring&, const std::wstring&) override {
        return Check(path);
    }
    HRESULT DeleteValue(const std::wstring& path, const std::wstring&) override { return Check(path); }
    HRESULT DeleteKey(const std::wstring& path) override { return Check(path); }
    HRESULT DeleteTree(const std::wstring& path) override { return Check(path); }

private:
    // Every part of a path must name a key: never may the classes root itself be an operation's target.
    static HRESULT Check(const std::wstring& path) {
        const std::wstring framed = L'\\' + path + L'\\';
        if (framed.find(L"\\\\") != std::wstring::npos || path.find(L'\0') != std::wstring::npos)
            std::abort();
        return S_OK;
    }
};

} // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    vant::testing::SetOutputDebugHook(
        [](LPCWSTR) {}); // a trace for every malformed script would only take time
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view script(reinterpret_cast<const char*>(data), size);
    CheckingStore store;
    for (const auto mode : {vant::ScriptMode::Register, vant::ScriptMode::Unregister}) {
        const HRESULT code = vant::RunScript(script, L"/a module/with 'quote'.so", mode, store);
        if (code != S_OK && code != vant::scriptMalformed)
            std::abort();
    }
    return 0;
}
