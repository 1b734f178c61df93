#include "host/services/ComponentService.h"

namespace vant {

HRESULT ComponentService::SetComponentProperty(BSTR componentId, BSTR name, BSTR value) {
    return Answer("SetComponentProperty", [&](Record& record) {
        record.Add("componentId", ToUtf8(TextOf(componentId)));
        record.Add("name", ToUtf8(TextOf(name)));
        record.Add("value", ToUtf8(TextOf(value)));
        return S_OK;
    });
}

} // namespace vant
