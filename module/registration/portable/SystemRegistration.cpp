#include "module/registration/Registration.h"
#include "module/registration/portable/CatalogueKeyStore.h"
#include "platform/Utf8.h"

#include <dlfcn.h>
#include <exception>
#include <filesystem>
#include <new>
#include <stdexcept>
#include <string>

namespace vant {

namespace {

/// Where the module was loaded from. Asked at load time, because the name may be relative to the folder of
/// that moment.
std::string FindModulePath() noexcept {
    try {
        Dl_info info = {};
        dladdr(reinterpret_cast<void*>(&ModulePath), &info);
        return std::filesystem::weakly_canonical(info.dli_fname).string();
    } catch (...) {
        return {};
    }
}

const std::string modulePath = FindModulePath();

} // namespace

std::wstring ModulePath() {
    std::wstring path = ToWide(modulePath);
    if (path.empty() || ToUtf8(path) != modulePath)
        throw std::runtime_error("the module's path cannot be written as text");
    return path;
}

HRESULT RegisterWithSystem(ScriptMode mode) {
    HRESULT result = E_FAIL;
    try {
        // Written also after a failing script: what came before it stays.
        Catalogue::Change(Catalogue::File(), [&](Catalogue& catalogue) {
            CatalogueKeyStore store(catalogue);
            result = RunAllScripts(mode, store);
        });
        return result;
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& failure) {
        OutputDebugStringW((L"VantCommands: " + ToWide(failure.what()) + L"\n").c_str());
        return E_ACCESSDENIED;
    }
}

} // namespace vant
