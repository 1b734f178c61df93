#include "vant/Registration.h"

#include "host/record/Json.h"
#include "host/runner/RegisteredClasses.h"
#include "host/text/Printable.h"
#include "platform/ClassRegistration.h"
#include "platform/Utf8.h"
#include "vant/Module.h"

#include <exception>
#include <iostream>
#include <memory>

namespace vant::program {

using namespace host;

namespace {

ExitCode Change(const RegistrationOptions& options, HRESULT (LoadedModule::*operation)() const,
                const char* done) {
    const std::unique_ptr<LoadedModule> module = OpenModule(options.module);
    HRESULT result = options.userOnly ? RegisterForUserOnly() : S_OK;
    if (SUCCEEDED(result))
        result = ((*module).*operation)();
    if (FAILED(result))
        throw Failure(ExitCode::Broken, options.module + " returned " + ToText(result) +
                                            "; what it had done before stays done");
    std::cout << done << ' ' << Printable(options.module) << '\n';
    if (!std::cout.flush())
        throw Failure(ExitCode::Broken,
                      std::string(done) + " " + options.module + ", but this could not be written");
    return ExitCode::Passed;
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
        std::cout << each.progId << ' ' << each.classId << ' ' << Printable(each.module) << '\n';
    if (classes.empty())
        std::cerr << "vant: no class is registered\n";
    if (!std::cout.flush())
        throw Failure(ExitCode::Broken, "the list could not be written completely");
    return ExitCode::Passed;
}

} // namespace vant::program
