#include "host/services/ComponentService.h"

#include "host/record/Vocabulary.h"

namespace vant::host {

HRESULT ComponentService::SetComponentProperty(BSTR componentId, BSTR name, BSTR value) {
    return Perform(operation::SetComponentProperty, [&](Record& record) {
        const std::string component = ToUtf8(TextOf(componentId));
        const std::string property = ToUtf8(TextOf(name));
        record.Add(argument::componentId, component);
        record.Add(argument::name, property);
        record.Add(argument::value, ToUtf8(TextOf(value)));
        return Exists(component, property) ? S_OK : HRESULT_FROM_WIN32(ERROR_NOT_FOUND);
    });
}

bool ComponentService::Exists(const std::string& componentId, const std::string& name) const {
    if (m_components.empty())
        return true;
    const auto component = m_components.find(componentId);
    return component != m_components.end() && (component->second.empty() || component->second.contains(name));
}

} // namespace vant::host
