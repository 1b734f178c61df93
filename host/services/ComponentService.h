#pragma once

#include "framework/interfaces/HostServices.h"
#include "host/services/HostObject.h"

#include <map>
#include <set>
#include <string>
#include <utility>

namespace vant {

/// The components of a display: the properties that each one has; one without any accepts every property.
using Components = std::map<std::string, std::set<std::string>>;

/// Takes what commands show on components of the display. The bench has no display: what was shown stands in
/// the journal.
class ComponentService final : public HostObject<IComponentService> {
public:
    /// Without any components the service accepts every component and property.
    explicit ComponentService(Journal& journal, Components components = {})
        : HostObject(journal, "ComponentService"), m_components(std::move(components)) {}

    HRESULT STDMETHODCALLTYPE Reserved3() override { return Refuse("Reserved3"); }
    HRESULT STDMETHODCALLTYPE Reserved4() override { return Refuse("Reserved4"); }
    HRESULT STDMETHODCALLTYPE Reserved5() override { return Refuse("Reserved5"); }
    HRESULT STDMETHODCALLTYPE Reserved6() override { return Refuse("Reserved6"); }
    HRESULT STDMETHODCALLTYPE Reserved7() override { return Refuse("Reserved7"); }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return Refuse("Reserved8"); }
    HRESULT STDMETHODCALLTYPE Reserved9() override { return Refuse("Reserved9"); }
    /// codeNotFound for a component or a property that does not exist.
    HRESULT STDMETHODCALLTYPE SetComponentProperty(BSTR componentId, BSTR name, BSTR value) override;

private:
    bool Exists(const std::string& componentId, const std::string& name) const;

    const Components m_components;
};

} // namespace vant
