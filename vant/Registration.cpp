#include "vant/Registration.h"

#include "host/record/Json.h"
#include "host/runner/LoadedModule.h"
#include "host/runner/RegisteredClasses.h"
#include "platform/ClassRegistration.h"
#include "platform/Utf8.h"

#include <exception>
#include <iostream>

namespace vant::program {

using namespace host;

namespace {

ExitCode Change(const RegistrationOptions& options, HRESULT (LoadedModule::*operation)() const,
                const char* done) {
    try {
        const LoadedModule module(PathFromUtf8(options.module));
        HRESULT result = options.userOnly ? RegisterForUserOnly() : S_OK;
        if (SUCCEEDED(result))
            result = (module.*operation)();
        if (SUCCEEDED(result)) {
            std::cout << done << ' ' << options.module << '\n';
            return ExitCode::Passed;
        }
        std::cerr << "vant: " << options.module << " answered " << ToText(result)
                  << "; what it had done before stays done\n";
    } catch (const std::exception& failure) {
        std::cerr << "vant: cannot load the module " << options.module << ": " << failure.what() << '\n';
    }
    return ExitCode::Broken;
}

} // namespace

ExitCode Register(const RegistrationOptions& options) {
    return Change(options, &LoadedModule::Register, "registered");
}

ExitCode Unregister(const RegistrationOptions& options) {
    return Change(options, &LoadedModule::Unregister, "unregistered");
}

ExitCode PrintCatalogue() {
    const auto classes = ListRegisteredClasses();
    for (const RegisteredClass& each : classes)
        std::cout << each.progId << ' ' << each.classId << ' ' << each.module << '\n';
    if (classes.empty())
        std::cerr << "vant: no class is registered\n";
    if (!std::cout.flush()) {
        std::cerr << "vant: the list could not be written completely\n";
        return ExitCode::Broken;
    }
    return ExitCode::Passed;
}

} // namespace vant::program
