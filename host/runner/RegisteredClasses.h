#pragma once

#include "host/runner/CommandFactory.h"

#include <string>
#include <vector>

namespace vant::host {

/// The command classes as they are registered with the system, by ProgID. The system loads whatever module
/// each class is registered with, and keeps it until this object goes.
class RegisteredClasses final : public CommandFactory {
public:
    /// Throws std::runtime_error where components cannot be used on this thread.
    RegisteredClasses();
    ~RegisteredClasses() override;
    RegisteredClasses(const RegisteredClasses&) = delete;
    RegisteredClasses& operator=(const RegisteredClasses&) = delete;

    /// Also REGDB_E_CLASSNOTREG, for a class that nobody has registered.
    HRESULT Create(std::string_view className, CComPtr<IVantCommand>& command) const override;
    /// Always true: the system does not tell what is left in the modules that it has loaded.
    bool CanUnload() const override { return true; }
};

/// One registered command class.
struct RegisteredClass {
    std::string progId;
    std::string classId; ///< in braces
    std::string module;  ///< the file that the system loads for it
};

/// Every command class that is registered, in the order of the class table.
std::vector<RegisteredClass> ListRegisteredClasses();

} // namespace vant::host
