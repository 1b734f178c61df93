#include "tests/module/ModulePresence.h"

#include <dlfcn.h>

namespace vant {

bool IsLoaded(const std::filesystem::path& file) {
    void* const handle = dlopen(file.c_str(), RTLD_NOLOAD | RTLD_LAZY);
    if (handle)
        dlclose(handle);
    return handle != nullptr;
}

} // namespace vant
