// What a command costs beside straight-line code that does the same work: its Execute alone, and its whole
// life.

#include "bench/BuiltCommand.h"
#include "framework/interfaces/ClassIds.h"

#include <array>
#include <benchmark/benchmark.h>
#include <memory>
#include <string>

namespace vant::bench {

namespace {

struct Case {
    const char* name;
    const CLSID* classId;
    Properties properties;
    void (Floor::*floor)() const;
};

const std::vector<Case>& Cases() {
    static const std::vector<Case> cases = {
        {"CommandTerminator",
         &CLSID_CommandTerminator,
         {{L"commandID", L"timer"}},
         &Floor::CommandTerminator},
        {"CompositeCommand",
         &CLSID_CompositeCommand,
         {{L"commandIDList", L"A B C"}},
         &Floor::CompositeCommand},
        {"DataStoreWriter",
         &CLSID_DataStoreWriter,
         {{L"dsLocation", L"entry"}, {L"value", L"a value"}},
         &Floor::DataStoreWriter},
        {"Calculator",
         &CLSID_Calculator,
         {{L"sourceA", L"12.5"}, {L"sourceB", L"9.75"}, {L"operation", L"add"}, {L"dsResult", L"sum"}},
         &Floor::Calculator},
    };
    return cases;
}

MinimalHost host;

void Execute(benchmark::State& state, const Case& subject) {
    const Strings strings(subject.properties);
    const auto command = Prepare(Factory(*subject.classId), host, strings.names, strings.values);
    for ([[maybe_unused]] auto _ : state)
        Require(command->Execute());
}

void ExecuteFloor(benchmark::State& state, const Case& subject) {
    const Strings strings(subject.properties);
    const Floor floor{strings.values.data(), &host};
    for ([[maybe_unused]] auto _ : state)
        (floor.*subject.floor)();
}

void Life(benchmark::State& state, const Case& subject) {
    const Strings strings(subject.properties);
    IClassFactory& factory = Factory(*subject.classId);
    for ([[maybe_unused]] auto _ : state)
        Require(Prepare(factory, host, strings.names, strings.values)->Execute());
}

/// The same life without a contract: one allocation for the object, the nine requests and the controller, a
/// copy of every name and value, the work, and all of it given back.
void LifeFloor(benchmark::State& state, const Case& subject) {
    struct Object {
        CComPtr<ICommandRunner> commandRunner;
        CComPtr<IComponentService> componentService;
        CComPtr<IUnknown> service3;
        CComPtr<IDataStore> dataStore;
        CComPtr<IPresentationService> presentationService;
        CComPtr<IUnknown> threadService;
        CComPtr<IUnknown> service7;
        CComPtr<IProcedureController> procedureController;
        CComPtr<IDataServiceOld> parameterService;
        CComPtr<IVantController> controller;
        std::array<CComBSTR, 5> names;
        std::array<CComBSTR, 5> values;
    };
    const Strings strings(subject.properties);
    for ([[maybe_unused]] auto _ : state) {
        const auto object = std::make_unique<Object>();
        host.get_CommandRunner(&object->commandRunner);
        host.get_ComponentService(&object->componentService);
        host.get_Service3(&object->service3);
        host.get_DataStore(&object->dataStore);
        host.get_PresentationService(&object->presentationService);
        host.get_ThreadService(&object->threadService);
        host.get_Service7(&object->service7);
        host.get_ProcedureController(&object->procedureController);
        host.get_ParameterService(&object->parameterService);
        object->controller = static_cast<IVantController*>(&host);
        for (std::size_t i = 0; i < strings.names.size(); ++i) {
            object->names[i] = strings.names[i];
            object->values[i] = strings.values[i];
        }
        const Floor floor{object->values.data(), &host};
        (floor.*subject.floor)();
    }
}

/// One CompositeCommand over a list of `range` identifiers.
void CompositeItems(benchmark::State& state) {
    std::wstring list = L"command";
    for (std::int64_t i = 1; i < state.range(0); ++i)
        list += L" command";
    const Strings strings({{L"commandIDList", list}});
    const auto command = Prepare(Factory(CLSID_CompositeCommand), host, strings.names, strings.values);
    for ([[maybe_unused]] auto _ : state)
        Require(command->Execute());
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(CompositeItems)->Name("PerItem/CompositeCommand")->RangeMultiplier(10)->Range(10, 100'000);

} // namespace

void RegisterCommandBenchmarks() {
    for (const Case& subject : Cases()) {
        const std::string name = subject.name;
        const auto add = [&subject](const std::string& title, auto function) {
            benchmark::RegisterBenchmark(
                title.c_str(), [&subject, function](benchmark::State& state) { function(state, subject); });
        };
        add("Execute/" + name, Execute);
        add("Execute/" + name + "/floor", ExecuteFloor);
        add("Life/" + name, Life);
        add("Life/" + name + "/floor", LifeFloor);
    }
}

} // namespace vant::bench
