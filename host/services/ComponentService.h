#pragma once

#include "framework/interfaces/HostServices.h"
#include "host/services/HostObject.h"

namespace vant {

/// Takes what commands show on components of the display. The bench has no display: what was shown stands in
/// the journal.
class ComponentService final : public HostObject<IComponentService> {
public:
    explicit ComponentService(Journal& journal) : HostObject(journal, "ComponentService") {}

    HRESULT STDMETHODCALLTYPE Reserved3() override { return Refuse("Reserved3"); }
    HRESULT STDMETHODCALLTYPE Reserved4() override { return Refuse("Reserved4"); }
    HRESULT STDMETHODCALLTYPE Reserved5() override { return Refuse("Reserved5"); }
    HRESULT STDMETHODCALLTYPE Reserved6() override { return Refuse("Reserved6"); }
    HRESULT STDMETHODCALLTYPE Reserved7() override { return Refuse("Reserved7"); }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return Refuse("Reserved8"); }
    HRESULT STDMETHODCALLTYPE Reserved9() override { return Refuse("Reserved9"); }
    /// Accepts every component and property.
    HRESULT STDMETHODCALLTYPE SetComponentProperty(BSTR componentId, BSTR name, BSTR value) override;
};

} // namespace vant
