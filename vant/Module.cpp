#include "vant/Module.h"

#include "platform/Utf8.h"
#include "vant/ExitCode.h"

#include <exception>

namespace vant::program {

std::unique_ptr<host::LoadedModule> OpenModule(const std::string& file) {
    try {
        return std::make_unique<host::LoadedModule>(PathFromUtf8(file));
    } catch (const std::exception& failure) {
        throw Failure(ExitCode::Broken, "cannot load the module " + file + ": " + failure.what());
    }
}

} // namespace vant::program
