#include "host/services/Services.h"

#include "host/record/Vocabulary.h"

#include <utility>

namespace vant::host {

namespace {

EngineObjects* Fill(std::optional<EngineObjects>& engine, CallGate& gate, ThreadService& threadService,
                    const std::optional<EngineDescription>& description) {
    if (!description)
        return nullptr;
    threadService.SetEngine(engine.emplace(gate, *description, threadService));
    return &*engine;
}

CComVariant Referenced(IUnknown& object) {
    CComVariant result;
    VARIANT* const filled = &result;
    filled->vt = VT_UNKNOWN;
    filled->punkVal = &object;
    object.AddRef();
    return result;
}

} // namespace

Services::Services(Journal& journal, CommandRunner::Run run, PersistentThreads::EndObserver threadEnded,
                   const std::optional<EngineDescription>& engineDescription, const Components& components,
                   const ConditionSets& conditions)
    : gate(journal), commandRunner(gate, std::move(run)), componentService(gate, components),
      service3(gate, service::Service3), dataStore(gate, data), presentationService(gate),
      threadService(gate, persistentThreads), service7(gate, service::Service7),
      procedureController(gate, changed),
      parameterService(gate, Fill(engine, gate, threadService, engineDescription)),
      controller(gate, persistentThreads),
      context(gate, {&procedureController, &commandRunner, &componentService, &service7, &service3,
                     &presentationService, &dataStore, &threadService, &parameterService}),
      persistentThreads(std::move(threadEnded), changed) {
    for (const auto& [name, each] : conditions)
        data.Set(ToWide(name), Referenced(conditionSets.emplace_back(
                                   gate, name, each, engine ? &engine->Model() : nullptr, data)));
}

void Services::Close() noexcept {
    parameterService.Close();
    persistentThreads.Close();
}

std::vector<std::string> Services::StillHeld() const {
    std::vector<std::string> held;
    const auto look = [&held](const auto& object) {
        if (object.References() != 0)
            held.push_back(object.Name());
    };
    look(context);
    look(controller);
    look(commandRunner);
    look(componentService);
    look(service3);
    look(dataStore);
    look(presentationService);
    look(threadService);
    look(service7);
    look(procedureController);
    look(parameterService);
    for (const ConditionSet& set : conditionSets)
        look(set);
    if (engine) {
        for (std::string& name : engine->StillHeld())
            held.push_back(std::move(name));
    }
    return held;
}

} // namespace vant::host
