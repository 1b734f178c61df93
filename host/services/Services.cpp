#include "host/services/Services.h"

#include "host/record/Vocabulary.h"

#include <utility>

namespace vant::host {

namespace {

EngineObjects* EngineFor(ThreadService& threadService, std::optional<EngineObjects>& own, CallGate& gate,
                         const std::optional<EngineDescription>& description, const Services* outer) {
    EngineObjects* engine = outer ? outer->engine : nullptr;
    if (!outer && description)
        engine = &own.emplace(gate, *description, threadService);
    if (engine)
        threadService.SetEngine(*engine);
    return engine;
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
                   const ConditionSets& conditions, Services* outer)
    : gate(journal), commandRunner(gate, std::move(run)), componentService(gate, components),
      service3(gate, service::Service3), dataStore(gate, data), presentationService(gate),
      threadService(gate, persistentThreads),
      engine(EngineFor(threadService, ownEngine, gate, engineDescription, outer)),
      service7(gate, service::Service7), procedureController(gate, changed), parameterService(gate, engine),
      controller(gate, persistentThreads),
      context(gate, {&procedureController, &commandRunner, &componentService, &service7, &service3,
                     &presentationService, &dataStore, &threadService, &parameterService}),
      persistentThreads(std::move(threadEnded), changed, outer ? outer->persistentThreads.LastCookie() : 0) {
    if (outer)
        gate.Intercept(outer->gate.CurrentInterceptor());
    for (const auto& [name, each] : conditions) {
        data.Set(ToWide(name), Referenced(conditionSets.emplace_back(
                                   gate, name, each, engine ? &engine->Model() : nullptr, data)));
        for (const Condition& condition : each.list) {
            if (!condition.hasOwnMessage)
                data.Set(ToWide(condition.message), CComVariant(CComBSTR(ToWide(Describe(condition)))));
        }
    }
}

void Services::Close() noexcept {
    parameterService.Close();
    persistentThreads.Close();
}

void Services::Open() noexcept {
    parameterService.Open();
    persistentThreads.Open();
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
    if (ownEngine) {
        for (std::string& name : ownEngine->StillHeld())
            held.push_back(std::move(name));
    }
    return held;
}

} // namespace vant::host
