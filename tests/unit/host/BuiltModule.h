#pragma once

#include "host/runner/LoadedModule.h"
#include "platform/Process.h"

namespace vant::test {

/// The module that was built beside this test program.
inline std::filesystem::path BuiltModuleFile() {
    return ProgramFolder() / LibraryFileName("VantCommands");
}

} // namespace vant::test
