#include "host/engine/Engine.h"

#include "host/services/Codes.h"
#include "platform/Utf8.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace vant {

namespace {

/// An input that moves is taken every so many steps and stays as it is between them.
constexpr std::int64_t movingSteps = 5;

} // namespace

Engine::Engine(const std::map<std::string, EngineParameter>& parameters, std::uint64_t seed, Clock clock)
    : m_clock(std::move(clock)), m_began(m_clock()) {
    for (const auto& [id, description] : parameters)
        m_parameters.try_emplace(id, id, description, seed);
    for (auto& [id, parameter] : m_parameters) {
        parameter.Connect(m_parameters);
        parameter.AddSchedule(m_schedule);
        if (parameter.HasInertia())
            m_inert.push_back(&parameter);
    }
    for (std::int64_t& time : m_schedule)
        time = (time + engineStep - 1) / engineStep;
    std::sort(m_schedule.begin(), m_schedule.end());
    m_moves = std::any_of(m_inert.begin(), m_inert.end(),
                          [](const LiveParameter* each) { return each->InputMoves(); });
    TakeInputs();
}

template <class Read>
HRESULT Engine::WithReadable(const std::string& id, Read read) const {
    const std::lock_guard lock(m_access);
    const auto found = m_parameters.find(id);
    if (found == m_parameters.end())
        return codeNotFound;
    const std::int64_t time = Advance();
    return found->second.BeginRead(time) ? read(found->second, time) : codeReadFailed;
}

HRESULT Engine::ReadValue(const std::string& id, CComVariant& value) const {
    return WithReadable(id, [&](const LiveParameter& parameter, std::int64_t time) {
        value = ToVariant(parameter.Read(time));
        return S_OK;
    });
}

HRESULT Engine::ReadText(const std::string& id, CComBSTR& text) const {
    return WithReadable(id, [&](const LiveParameter& parameter, std::int64_t time) {
        if (const auto& own = parameter.OwnText()) {
            text = CComBSTR(ToWide(*own));
            return S_OK;
        }
        CComVariant value = ToVariant(parameter.Read(time));
        const HRESULT code = value.ChangeType(VT_BSTR, lcidEnglishUS);
        if (SUCCEEDED(code))
            text = CComBSTR::Copy(StringMember(value.Get()));
        return code;
    });
}

HRESULT Engine::Write(const std::string& id, const VARIANT& value) {
    if (value.vt & VT_BYREF)
        return E_INVALIDARG;
    const std::lock_guard lock(m_access);
    const auto found = m_parameters.find(id);
    if (found == m_parameters.end())
        return codeNotFound;
    LiveParameter& parameter = found->second;
    if (parameter.IsReadOnly())
        return E_ACCESSDENIED;
    CComVariant converted = CComVariant::Copy(value);
    if (const HRESULT code = converted.ChangeType(ToVariant(parameter.Written()).Get().vt, lcidEnglishUS);
        FAILED(code))
        return code;
    Value written = ToValue(converted.Get());
    if (!parameter.Admits(written))
        return codeOutOfLimits;
    Advance();
    parameter.Write(std::move(written), ++m_writes);
    TakeInputs();
    return S_OK;
}

std::int64_t Engine::Advance() const {
    const std::int64_t time = std::max<std::int64_t>(m_clock() - m_began, m_step * engineStep);
    const std::int64_t now = time / engineStep;
    for (std::int64_t next = NextChange(); next <= now; next = NextChange()) {
        m_step = next;
        TakeInputs();
    }
    m_step = now; // where no input changes, so that reading leaves no trace
    return time;
}

std::int64_t Engine::NextChange() const {
    const auto scheduled = std::upper_bound(m_schedule.begin(), m_schedule.end(), m_step);
    const std::int64_t moved =
        m_moves ? (m_step / movingSteps + 1) * movingSteps : std::numeric_limits<std::int64_t>::max();
    return scheduled == m_schedule.end() ? moved : std::min(*scheduled, moved);
}

void Engine::TakeInputs() const {
    for (LiveParameter* const each : m_inert)
        each->TakeInput(m_step);
}

} // namespace vant
