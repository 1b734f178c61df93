#include "platform/system.h"
#include "tests/module/ModulePresence.h"

namespace vant {

bool IsLoaded(const std::filesystem::path& file) {
    return GetModuleHandleW(file.c_str()) != nullptr;
}

} // namespace vant
