#pragma once

#include "host/engine/EngineObjects.h"
#include "host/services/CommandRunner.h"
#include "host/services/ComponentService.h"
#include "host/services/Context.h"
#include "host/services/Controller.h"
#include "host/services/DataStore.h"
#include "host/services/ParameterService.h"
#include "host/services/PresentationService.h"
#include "host/services/ProcedureController.h"
#include "host/services/ThreadService.h"
#include "host/services/UnusedService.h"

#include <optional>
#include <string>
#include <vector>

namespace vant {

/// All host objects of one run.
struct Services {
    /// Without an engine nothing of one exists.
    Services(Journal& journal, CommandRunner::Run run,
             const std::optional<EngineDescription>& engineDescription = std::nullopt,
             const Components& components = {});

    /// The names of the objects that commands still hold; none once every command is gone, unless one leaks.
    std::vector<std::string> StillHeld() const;

    CommandRunner commandRunner;
    ComponentService componentService;
    UnusedService service3;
    DataStore dataStore;
    PresentationService presentationService;
    ThreadService threadService;
    std::optional<EngineObjects> engine;
    UnusedService service7;
    ProcedureController procedureController;
    ParameterService parameterService;
    Controller controller;
    Context context;
};

} // namespace vant
