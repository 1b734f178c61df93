#include "host/services/PresentationService.h"

#include "host/record/Vocabulary.h"

namespace vant::host {

HRESULT PresentationService::ShowInstruction(BSTR text) {
    return Perform(operation::ShowInstruction, [&](Record& record) {
        record.Add(argument::text, ToUtf8(TextOf(text)));
        return S_OK;
    });
}

} // namespace vant::host
