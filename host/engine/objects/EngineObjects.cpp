#include "host/engine/objects/EngineObjects.h"

#include <algorithm>
#include <cstdlib>
#include <fmt/format.h>
#include <limits>
#include <utility>

namespace vant::host {

namespace {

/// The control module's number, which commands, too, derive from the connection's identifier: its leading
/// decimal digits, clamped to 32 bits.
LONG EcmIdOf(const std::string& connection) {
    const long long number = std::strtoll(connection.c_str(), nullptr, 10);
    return static_cast<LONG>(
        std::clamp<long long>(number, std::numeric_limits<LONG>::min(), std::numeric_limits<LONG>::max()));
}

} // namespace

EngineObjects::EngineObjects(CallGate& gate, EngineDescription description, IUnknown& identity)
    : m_description(std::move(description)), m_ecmId(EcmIdOf(m_description.connection)),
      m_engine(m_description), m_connection(gate, m_description.connection), m_session(gate, m_items),
      m_directory(gate, m_ecmId, m_session), m_protocolSource(gate, m_description, m_ecmId),
      m_sessionManager(gate, m_description, identity, m_directory, m_protocolSource),
      m_units(gate, m_description.units), m_services(gate, identity, m_units) {
    for (const auto& [id, parameter] : m_description.parameters) {
        m_parameters.emplace(id, std::make_unique<Parameter>(gate, m_engine, id, parameter));
        m_items.emplace(id, std::make_unique<SessionItem>(gate, m_engine, id));
    }
    for (const auto& [id, records] : m_description.faultArrays)
        m_faultArrays.emplace(id, std::make_unique<FaultArray>(gate, m_engine, id, records));
}

Parameter* EngineObjects::FindParameter(const std::string& id) const {
    const auto found = m_parameters.find(id);
    return found == m_parameters.end() ? nullptr : found->second.get();
}

FaultArray* EngineObjects::FindFaultArray(const std::string& id) const {
    const auto found = m_faultArrays.find(id);
    return found == m_faultArrays.end() ? nullptr : found->second.get();
}

std::vector<std::string> EngineObjects::StillHeld() const {
    std::vector<std::string> held;
    const auto look = [&held](const auto& object) {
        if (object.References() != 0)
            held.push_back(object.Name());
    };
    const auto lookNamed = [&held](const auto& object, const std::string& id) {
        if (object.References() != 0)
            held.push_back(fmt::format("{} '{}'", object.Name(), id));
    };
    for (const auto& [id, parameter] : m_parameters)
        lookNamed(*parameter, id);
    for (const auto& [id, item] : m_items)
        lookNamed(*item, id);
    for (const auto& [id, array] : m_faultArrays)
        array->ForEach(look);
    look(m_connection);
    if (m_session.References() != 0 || m_session.IsOpen())
        held.push_back(m_session.Name());
    look(m_directory);
    m_protocolSource.ForEach(look);
    look(m_sessionManager);
    look(m_units);
    m_units.ForEach(look);
    look(m_services);
    return held;
}

} // namespace vant::host
