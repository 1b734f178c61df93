#include "vant/TestWorker.h"

#include "host/suite/CaseRun.h"
#include "platform/Clock.h"
#include "vant/Module.h"

#include <iostream>
#include <memory>

namespace vant::program {

using namespace host;

ExitCode WorkForTest(const std::string& module) {
    UseVirtualTime(); // Before the module is loaded, which waits in this time.
    const std::unique_ptr<LoadedModule> commands = OpenModule(module);
    CaseRunner runner(*commands);
    for (std::string line; std::getline(std::cin, line);)
        std::cout << runner.Run(Json::parse(line)).dump() << '\n' << std::flush;
    return ExitCode::Passed;
}

} // namespace vant::program
