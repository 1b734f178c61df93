#pragma once

#include "framework/interfaces/HostServices.h"
#include "host/object/HostObject.h"

namespace vant::host {

/// Takes instructions to the technician. What was shown stands in the journal.
class PresentationService final : public HostObject<IPresentationService> {
public:
    explicit PresentationService(Journal& journal) : HostObject(journal, "PresentationService") {}

    HRESULT STDMETHODCALLTYPE Reserved3() override { return Refuse("Reserved3"); }
    HRESULT STDMETHODCALLTYPE Reserved4() override { return Refuse("Reserved4"); }
    HRESULT STDMETHODCALLTYPE Reserved5() override { return Refuse("Reserved5"); }
    HRESULT STDMETHODCALLTYPE Reserved6() override { return Refuse("Reserved6"); }
    HRESULT STDMETHODCALLTYPE ShowInstruction(BSTR text) override;
};

} // namespace vant::host
