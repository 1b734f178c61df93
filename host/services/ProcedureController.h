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

/// What becomes of a transition that a command chooses.
enum class Acceptance {
    Refused, ///< It leads nowhere from this step.
    Ignored, ///< It succeeds and chooses nothing.
    Accepted,
    Final ///< No later choice replaces it.
};

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
    /// The last choice counts, unless one was final. E_INVALIDARG, and an earlier choice remains, for an id
    /// that leads nowhere from this step, and for every id between two steps. The empty id, which a command
    /// without a transition property passes, always succeeds and chooses nothing, and so does every id that
    /// the step ignores.
    HRESULT STDMETHODCALLTYPE SetTransition(BSTR transitionId) override;

    /// Begins a step: forgets the choice, and accepts every id for which `accepts` does not return Refused
    /// until the step ends. `accepts` is called on any thread, and must not call the controller.
    void EnterStep(std::function<Acceptance(const std::string&)> accepts);
    /// Makes a choice for the step, as the operator's answer; a final one remains. Only within a step that
    /// accepts the id.
    void Choose(std::string id);
    /// The choice since the step began.
    std::optional<std::string> Chosen() const;
    /// Whether that choice is final.
    bool IsFinal() const;
    /// Ends the step: accepts no more choices, and returns the one that counts. `isFinal`: whether it is
    /// final.
    std::optional<std::string> LeaveStep(bool& isFinal);

private:
    Event& m_changed;
    mutable std::mutex m_access;
    std::function<Acceptance(const std::string&)> m_accepts; ///< Empty between steps.
    bool m_isFinal = false;
    std::optional<std::string> m_chosen;
};

} // namespace vant::host
