#include "host/runner/RegisteredClasses.h"

#include "framework/interfaces/ClassIds.h"
#include "host/procedure/ClassReport.h"
#include "platform/ClassRegistration.h"
#include "platform/Clock.h"
#include "platform/MessagePresenter.h"
#include "platform/Utf8.h"

#include <algorithm>
#include <stdexcept>

namespace vant::host {

namespace {

std::wstring ProgIdOf(std::wstring_view className) {
    return std::wstring(L"VantCommands.").append(className);
}

} // namespace

RegisteredClasses::RegisteredClasses() {
    // Otherwise a registration that cannot be read would look like a class that is not registered.
    ListRegisteredClasses();
    if (FAILED(CoInitializeEx(nullptr, COINIT_MULTITHREADED)))
        throw std::runtime_error("the system's components cannot be used");
}

RegisteredClasses::~RegisteredClasses() {
    CoUninitialize();
}

HRESULT RegisteredClasses::Create(std::string_view className, CComPtr<IVantCommand>& command) const {
    const auto names = ClassNames();
    if (std::find(names.begin(), names.end(), className) == names.end())
        return CLASS_E_CLASSNOTAVAILABLE;
    CLSID classId = {};
    if (FAILED(CLSIDFromProgID(ProgIdOf(ToWide(className)).c_str(), &classId)))
        return REGDB_E_CLASSNOTREG;
    const HRESULT code = CheckGiven(CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IID_IVantCommand,
                                                     reinterpret_cast<void**>(&command)),
                                    command);
    if (SUCCEEDED(code)) {
        // The table of its operations lies in the module.
        const void* const inModule = *reinterpret_cast<void**>(command.Get());
        TakeTimeFromHere(inModule);
        TakeMessagesFrom(inModule);
    }
    return code;
}

std::vector<RegisteredClass> ListRegisteredClasses() {
    std::vector<std::wstring> classIds;
    for (const ClassRow& row : classTable)
        classIds.emplace_back(row.clsid);
    const auto modules = RegisteredModules(classIds);
    std::vector<RegisteredClass> found;
    for (std::size_t i = 0; i < modules.size(); ++i) {
        if (modules[i])
            found.push_back({ToUtf8(ProgIdOf(classTable[i].name)), ToUtf8(classIds[i]), ToUtf8(*modules[i])});
    }
    return found;
}

} // namespace vant::host
