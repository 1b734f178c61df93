#pragma once

#include "framework/interfaces/HostServices.h"
#include "host/object/HostObject.h"
#include "host/record/Vocabulary.h"
#include "host/services/Components.h"

#include <string>
#include <utility>

namespace vant::host {

/// Accepts what commands show on components of the display. The bench has no display: the journal records
/// what was shown.
class ComponentService final : public HostObject<IComponentService> {
public:
    /// If `components` is empty, the service accepts every component and property.
    explicit ComponentService(CallGate& gate, Components components = {})
        : HostObject(gate, service::ComponentService), m_components(std::move(components)) {}

    HRESULT STDMETHODCALLTYPE Reserved3() override { return NotImplemented("Reserved3"); }
    HRESULT STDMETHODCALLTYPE Reserved4() override { return NotImplemented("Reserved4"); }
    HRESULT STDMETHODCALLTYPE Reserved5() override { return NotImplemented("Reserved5"); }
    HRESULT STDMETHODCALLTYPE Reserved6() override { return NotImplemented("Reserved6"); }
    HRESULT STDMETHODCALLTYPE Reserved7() override { return NotImplemented("Reserved7"); }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return NotImplemented("Reserved8"); }
    HRESULT STDMETHODCALLTYPE Reserved9() override { return NotImplemented("Reserved9"); }
    /// HRESULT_FROM_WIN32(ERROR_NOT_FOUND) for a component or a property that does not exist.
    HRESULT STDMETHODCALLTYPE SetComponentProperty(BSTR componentId, BSTR name, BSTR value) override;

private:
    bool Exists(const std::string& componentId, const std::string& name) const;

    const Components m_components;
};

} // namespace vant::host
