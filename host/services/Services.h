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
    /// `run` and `threadEnded` are passed to the command runner and to the threads. Without an engine there
    /// are no parameters, faults or connection. The data store holds the condition sets from the beginning.
    /// `outer`, if it is not null, is the run that this one is part of: both then share its engine and the
    /// interceptor of its calls, and it must outlive this one.
    Services(Journal& journal, CommandRunner::Run run, PersistentThreads::EndObserver threadEnded = {},
             const std::optional<EngineDescription>& engineDescription = std::nullopt,
             const Components& components = {}, const ConditionSets& conditions = {},
             Services* outer = nullptr);

    /// From now on nothing is actuated any more: no thread is started and no parameter is written. Any thread
    /// may call.
    void Close() noexcept;
    /// Undoes Close once all threads have ended.
    void Open() noexcept;

    /// The names of the objects that commands or the data store still hold. Once every command has been
    /// destroyed and the data is cleared, each name is a leak.
    std::vector<std::string> StillHeld() const;

    /// Every call on the objects below passes through it.
    CallGate gate;
    /// Signalled when a thread has ended or a transition has been chosen. One thread may wait for it.
    Event changed;
    CommandRunner commandRunner;
    ComponentService componentService;
    UnusedService service3;
    std::list<ConditionSet> conditionSets; ///< They outlive the data, which holds them.
    NamedValues data;
    DataStore dataStore;
    PresentationService presentationService;
    ThreadService threadService;
    std::optional<EngineObjects> ownEngine;
    EngineObjects* const engine; ///< Null if there is none.
    UnusedService service7;
    ProcedureController procedureController;
    ParameterService parameterService;
    Controller controller;
    Context context;
    /// Destroyed first: until then threads may use everything above.
    PersistentThreads persistentThreads;
};

} // namespace vant::host
