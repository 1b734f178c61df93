#include "framework/StopReport.h"

#include "ecm/ResultPolicy.h"
#include "framework/ResultFromCaughtException.h"

namespace vant {

HRESULT ReportStop(IUnknown* self, IVantController* controller) noexcept {
    try {
        CCheckedResult result;
        const CComPtr<IUnknown> unknown(self);
        CComPtr<IVantPersistentCommand> command;
        result = unknown.QueryInterface(&command);
        result = controller ? controller->PersistentCommandStopped(command.Get()) : E_POINTER;
        return result;
    } catch (...) {
        return ResultFromCaughtException();
    }
}

} // namespace vant
