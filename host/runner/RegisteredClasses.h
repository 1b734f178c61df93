#pragma once

#include "host/runner/CommandFactory.h"

#include <string>
#include <vector>

namespace vant::host {

/// The command classes that are registered with the system, by ProgID. The system loads the module that each
/// class is registered with, and keeps it until this object is destroyed.
class RegisteredClasses final : public CommandFactory {
public:
    /// Throws std::runtime_error if components cannot be used on this thread, or the registrations cannot be
    /// read.
    RegisteredClasses();
    ~RegisteredClasses() override;
    RegisteredClasses(const RegisteredClasses&) = delete;
    RegisteredClasses& operator=(const RegisteredClasses&) = delete;

    /// Also REGDB_E_CLASSNOTREG, for a class that is not registered.
    HRESULT Create(std::string_view className, CComPtr<IVantCommand>& command) const override;
    /// Always true: the system does not say what is left in the modules that it has loaded.
    bool CanUnload() const override { return true; }
};

/// One registered command class.
struct RegisteredClass {
    std::string progId;
    std::string classId; ///< In braces.
    std::string module;  ///< The file that the system loads for it.
};

/// Every command class that is registered, in the order of the class table.
std::vector<RegisteredClass> ListRegisteredClasses();

} // namespace vant::host
