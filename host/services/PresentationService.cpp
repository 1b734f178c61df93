#include "host/services/PresentationService.h"

namespace vant::host {

HRESULT PresentationService::ShowInstruction(BSTR text) {
    return Answer("ShowInstruction", [&](Record& record) {
        record.Add("text", ToUtf8(TextOf(text)));
        return S_OK;
    });
}

} // namespace vant::host
