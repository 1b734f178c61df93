#pragma once

#include "framework/interfaces/HostServices.h"
#include "host/object/HostObject.h"
#include "host/record/Vocabulary.h"

namespace vant::host {

/// Accepts instructions to the technician. The journal records what was shown.
class PresentationService final : public HostObject<IPresentationService> {
public:
    explicit PresentationService(CallGate& gate) : HostObject(gate, service::PresentationService) {}

    HRESULT STDMETHODCALLTYPE Reserved3() override { return NotImplemented("Reserved3"); }
    HRESULT STDMETHODCALLTYPE Reserved4() override { return NotImplemented("Reserved4"); }
    HRESULT STDMETHODCALLTYPE Reserved5() override { return NotImplemented("Reserved5"); }
    HRESULT STDMETHODCALLTYPE Reserved6() override { return NotImplemented("Reserved6"); }
    HRESULT STDMETHODCALLTYPE ShowInstruction(BSTR text) override;
};

} // namespace vant::host
