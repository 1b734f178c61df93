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
            if (m_ignoresChoices)
                return S_OK;
            if (!m_leadsOn || !m_leadsOn(id))
                return id.empty() ? S_OK : E_INVALIDARG;
            m_chosen = std::move(id);
        }
        m_changed.Set();
        return S_OK;
    });
}

void ProcedureController::EnterStep(std::function<bool(const std::string&)> leadsOn, bool ignoresChoices) {
    const std::lock_guard lock(m_access);
    m_leadsOn = std::move(leadsOn);
    m_ignoresChoices = ignoresChoices;
    m_chosen.reset();
}

std::optional<std::string> ProcedureController::Chosen() const {
    const std::lock_guard lock(m_access);
    return m_chosen;
}

std::optional<std::string> ProcedureController::LeaveStep() {
    const std::lock_guard lock(m_access);
    m_leadsOn = nullptr;
    m_ignoresChoices = false;
    return std::exchange(m_chosen, std::nullopt);
}

} // namespace vant::host
