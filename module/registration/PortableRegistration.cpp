#include "module/registration/CatalogueKeyStore.h"
#include "module/registration/Registration.h"
#include "platform/Utf8.h"

#include <dlfcn.h>
#include <exception>
#include <filesystem>
#include <new>

namespace vant {

std::wstring ModulePath() {
    Dl_info info = {};
    dladdr(reinterpret_cast<void*>(&ModulePath), &info);
    return ToWide(std::filesystem::absolute(info.dli_fname).string());
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
