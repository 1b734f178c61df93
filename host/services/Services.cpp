#include "host/services/Services.h"

#include <utility>

namespace vant {

namespace {

EngineObjects* Fill(std::optional<EngineObjects>& engine, Journal& journal, ThreadService& threadService,
                    const std::optional<EngineDescription>& description) {
    if (!description)
        return nullptr;
    threadService.SetEngine(engine.emplace(journal, *description, threadService));
    return &*engine;
}

} // namespace

Services::Services(Journal& journal, CommandRunner::Run run,
                   const std::optional<EngineDescription>& engineDescription, const Components& components)
    : commandRunner(journal, std::move(run)), componentService(journal, components),
      service3(journal, "Service3"), dataStore(journal), presentationService(journal), threadService(journal),
      service7(journal, "Service7"), procedureController(journal),
      parameterService(journal, Fill(engine, journal, threadService, engineDescription)), controller(journal),
      context(journal, {&procedureController, &commandRunner, &componentService, &service7, &service3,
                        &presentationService, &dataStore, &threadService, &parameterService}) {}

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
    if (engine) {
        for (std::string& name : engine->StillHeld())
            held.push_back(std::move(name));
    }
    return held;
}

} // namespace vant
