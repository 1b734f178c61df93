#include "host/services/Services.h"

#include <utility>

namespace vant::host {

namespace {

EngineObjects* Fill(std::optional<EngineObjects>& engine, Journal& journal, ThreadService& threadService,
                    const std::optional<EngineDescription>& description) {
    if (!description)
        return nullptr;
    threadService.SetEngine(engine.emplace(journal, *description, threadService));
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

Services::Services(Journal& journal, CommandRunner::Run run,
                   const std::optional<EngineDescription>& engineDescription, const Components& components,
                   const ConditionSets& conditions)
    : commandRunner(journal, std::move(run)), componentService(journal, components),
      service3(journal, "Service3"), dataStore(journal, data), presentationService(journal),
      threadService(journal, persistentThreads), service7(journal, "Service7"),
      procedureController(journal, changed),
      parameterService(journal, Fill(engine, journal, threadService, engineDescription)),
      controller(journal, persistentThreads),
      context(journal, {&procedureController, &commandRunner, &componentService, &service7, &service3,
                        &presentationService, &dataStore, &threadService, &parameterService}),
      persistentThreads(journal, changed) {
    for (const auto& [name, each] : conditions)
        data.Set(ToWide(name), Referenced(conditionSets.emplace_back(
                                   journal, name, each, engine ? &engine->Model() : nullptr, data)));
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
