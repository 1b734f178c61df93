#pragma once

#include "framework/interfaces/HostServices.h"
#include "host/object/HostObject.h"
#include "host/record/Vocabulary.h"
#include "platform/Event.h"

#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

namespace vant::host {

/// Keeps the transition that commands choose for the current step. Any thread may call.
class ProcedureController final : public HostObject<IProcedureController> {
public:
    /// `changed` is signalled each time a transition has been chosen; it must outlive the controller.
    ProcedureController(CallGate& gate, Event& changed)
        : HostObject(gate, service::ProcedureController), m_changed(changed) {}

    HRESULT STDMETHODCALLTYPE Reserved3() override { return NotImplemented("Reserved3"); }
    HRESULT STDMETHODCALLTYPE Reserved4() override { return NotImplemented("Reserved4"); }
    HRESULT STDMETHODCALLTYPE Reserved5() override { return NotImplemented("Reserved5"); }
    HRESULT STDMETHODCALLTYPE Reserved6() override { return NotImplemented("Reserved6"); }
    /// The last choice counts. E_INVALIDARG, and an earlier choice remains, for an id that leads nowhere from
    /// this step, and for every id between two steps. The empty id, which a command without a transition
    /// property passes, always succeeds and chooses nothing, and so does every id in a step that ignores
    /// choices.
    HRESULT STDMETHODCALLTYPE SetTransition(BSTR transitionId) override;

    /// Begins a step that ignores choices.
    void EnterStepWithoutChoice() { EnterStep({}, true); }
    /// Begins a step: forgets the choice, and accepts every id for which `leadsOn` returns true until the
    /// step ends. `leadsOn` is called on any thread, and must not call the controller.
    void EnterStep(std::function<bool(const std::string&)> leadsOn) { EnterStep(std::move(leadsOn), false); }
    /// The choice since the step began.
    std::optional<std::string> Chosen() const;
    /// Ends the step: accepts no more choices, and returns the last one.
    std::optional<std::string> LeaveStep();

private:
    void EnterStep(std::function<bool(const std::string&)> leadsOn, bool ignoresChoices);

    Event& m_changed;
    mutable std::mutex m_access;
    std::function<bool(const std::string&)> m_leadsOn; ///< Empty between steps.
    bool m_ignoresChoices = false;
    std::optional<std::string> m_chosen;
};

} // namespace vant::host
