#pragma once

#include "host/engine/model/Engine.h"
#include "host/engine/model/EngineDescription.h"
#include "host/engine/objects/Connection.h"
#include "host/engine/objects/Directory.h"
#include "host/engine/objects/ECMServices.h"
#include "host/engine/objects/FaultArray.h"
#include "host/engine/objects/Parameter.h"
#include "host/engine/objects/ProtocolSource.h"
#include "host/engine/objects/Session.h"
#include "host/engine/objects/SessionManager.h"
#include "host/engine/objects/UnitsTable.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace vant::host {

/// A simulated engine and all objects through which commands reach it.
class EngineObjects {
public:
    /// `identity` is the COM object that the engine services belong to. It must outlive this object.
    EngineObjects(CallGate& gate, EngineDescription description, IUnknown& identity);

    Engine& Model() noexcept { return m_engine; }
    Connection& TheConnection() noexcept { return m_connection; }
    ECMServices& Services() noexcept { return m_services; }
    SessionManager& Sessions() noexcept { return m_sessionManager; }
    /// Null if no parameter, or no fault array, has that id.
    Parameter* FindParameter(const std::string& id) const;
    FaultArray* FindFaultArray(const std::string& id) const;

    /// The names of the objects that commands still hold. The session counts as held while a handle is open.
    std::vector<std::string> StillHeld() const;

private:
    const EngineDescription m_description;
    const LONG m_ecmId;
    Engine m_engine;
    std::map<std::string, std::unique_ptr<Parameter>> m_parameters;
    std::map<std::string, std::unique_ptr<FaultArray>> m_faultArrays;
    Connection m_connection;
    Session::Items m_items;
    Session m_session;
    Directory m_directory;
    ProtocolSource m_protocolSource;
    SessionManager m_sessionManager;
    UnitsTable m_units;
    ECMServices m_services;
};

} // namespace vant::host
