#include "host/services/ProcedureController.h"

#include "host/record/Vocabulary.h"

#include <utility>

namespace vant::host {

HRESULT ProcedureController::SetTransition(BSTR transitionId) {
    return Perform(operation::SetTransition, [&](Record& record) -> HRESULT {
        std::string id = ToUtf8(TextOf(transitionId));
        record.Add(argument::transitionId, id);
        {
            const std::lock_guard lock(m_access);
            const Acceptance acceptance = m_accepts ? m_accepts(id) : Acceptance::Refused;
            if (acceptance == Acceptance::Refused)
                return id.empty() ? S_OK : E_INVALIDARG;
            if (acceptance == Acceptance::Ignored || (m_isFinal && acceptance != Acceptance::Final))
                return S_OK;
            m_isFinal = acceptance == Acceptance::Final;
            m_chosen = std::move(id);
        }
        m_changed.Set();
        return S_OK;
    });
}

void ProcedureController::EnterStep(std::function<Acceptance(const std::string&)> accepts) {
    const std::lock_guard lock(m_access);
    m_accepts = std::move(accepts);
    m_isFinal = false;
    m_chosen.reset();
}

void ProcedureController::Choose(std::string id) {
    const std::lock_guard lock(m_access);
    if (!m_isFinal)
        m_chosen = std::move(id);
}

std::optional<std::string> ProcedureController::Chosen() const {
    const std::lock_guard lock(m_access);
    return m_chosen;
}

bool ProcedureController::IsFinal() const {
    const std::lock_guard lock(m_access);
    return m_isFinal;
}

std::optional<std::string> ProcedureController::LeaveStep(bool& isFinal) {
    const std::lock_guard lock(m_access);
    isFinal = std::exchange(m_isFinal, false);
    m_accepts = nullptr;
    return std::exchange(m_chosen, std::nullopt);
}

} // namespace vant::host
