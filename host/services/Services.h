#pragma once

#include "host/conditions/ConditionSet.h"
#include "host/engine/objects/EngineObjects.h"
#include "host/services/CommandRunner.h"
#include "host/services/ComponentService.h"
#include "host/services/Context.h"
#include "host/services/Controller.h"
#include "host/services/DataStore.h"
#include "host/services/ParameterService.h"
#include "host/services/PersistentThreads.h"
#include "host/services/PresentationService.h"
#include "host/services/ProcedureController.h"
#include "host/services/ThreadService.h"
#include "host/services/UnusedService.h"
#include "platform/Event.h"

#include <list>
#include <optional>
#include <string>
#include <vector>

namespace vant::host {

/// All host objects of one run.
struct Services {
    /// Without an engine nothing of one exists. The condition sets stand in the data store from the
    /// beginning.
    Services(Journal& journal, CommandRunner::Run run,
             const std::optional<EngineDescription>& engineDescription = std::nullopt,
             const Components& components = {}, const ConditionSets& conditions = {});

    /// From now on nothing more is actuated: no thread is started and no parameter written. Any thread may
    /// call.
    void Close() noexcept;

    /// The names of the objects that commands still hold; none once every command is gone, unless one leaks.
    /// What the data store holds counts as held, too.
    std::vector<std::string> StillHeld() const;

    /// Signalled when a thread has ended or a transition has been chosen. One thread may wait for it.
    Event changed;
    CommandRunner commandRunner;
    ComponentService componentService;
    UnusedService service3;
    std::list<ConditionSet> conditionSets; ///< They outlive the data, which hold them.
    NamedValues data;
    DataStore dataStore;
    PresentationService presentationService;
    ThreadService threadService;
    std::optional<EngineObjects> engine;
    UnusedService service7;
    ProcedureController procedureController;
    ParameterService parameterService;
    Controller controller;
    Context context;
    /// Its end is the first thing that ends: until then threads may use everything above.
    PersistentThreads persistentThreads;
};

} // namespace vant::host
