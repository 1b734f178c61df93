// What a persistent command costs beside straight-line code that does the same: how long it takes to stop,
// and a round of the command that works most. Both are wall time.

#include "bench/BuiltCommand.h"
#include "bench/PersistentServices.h"
#include "framework/interfaces/ClassIds.h"
#include "platform/Event.h"

#include <benchmark/benchmark.h>
#include <chrono>
#include <functional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace vant::bench {

namespace {

MinimalHost host;
PersistentServices services;

using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

/// The host's persistent thread, which does one piece of work after the other.
class Worker {
public:
    Worker() : m_thread([this] { Run(); }) {}
    ~Worker() {
        Begin({});
        m_thread.join();
    }
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    void Begin(std::function<void()> work) {
        m_work = std::move(work);
        m_begun.Set();
    }
    void AwaitEnd() { m_ended.Wait(INFINITE); }

private:
    void Run() {
        for (;;) {
            m_begun.Wait(INFINITE);
            if (!m_work)
                return;
            m_work();
            m_ended.Set();
        }
    }

    Event m_begun;
    Event m_ended;
    std::function<void()> m_work;
    std::thread m_thread;
};

/// Long enough for a body to reach its wait.
void LetItWait() {
    std::this_thread::sleep_for(std::chrono::microseconds(200));
}

struct Case {
    const char* name;
    const CLSID* classId;
    Properties properties;
    DWORD wait; ///< its first, in milliseconds
};

const std::vector<Case>& Cases() {
    static const std::vector<Case> cases = {
        {"Timer", &CLSID_Timer, {{L"length", L"1000"}, {L"dsBase", L"count"}}, 1000},
        {"MonitorUpdater",
         &CLSID_MonitorUpdater,
         {{L"parameterIDs", L""}, {L"dsBaseName", L"B"}, {L"monitorID", L"gauge"}},
         250},
    };
    return cases;
}

CComPtr<IVantCommand> PreparePersistent(const CLSID& classId, const Properties& properties) {
    host.threadService = services.Object();
    host.parameter = services.Object();
    const Strings strings(properties);
    return Prepare(Factory(classId), host, strings.names, strings.values);
}

/// From the call of Stop to the end of the thread's work.
void StopLatency(benchmark::State& state, const Case& subject) {
    const auto command = PreparePersistent(*subject.classId, subject.properties);
    CComPtr<IVantPersistentCommand> persistent;
    Require(command.QueryInterface(&persistent));
    Worker worker;
    for ([[maybe_unused]] auto _ : state) {
        Require(command->Execute());
        worker.Begin([] { services.callback->RunOnThread(); });
        LetItWait();
        const auto start = Clock::now();
        Require(persistent->Stop());
        worker.AwaitEnd();
        state.SetIterationTime(SecondsSince(start));
    }
    services.callback.Release();
}

/// The same event calls, and the report to the controller.
void StopLatencyFloor(benchmark::State& state, const Case& subject) {
    Worker worker;
    for ([[maybe_unused]] auto _ : state) {
        Event stop;
        worker.Begin([&] { stop.Wait(subject.wait); });
        LetItWait();
        const auto start = Clock::now();
        stop.Set();
        host.PersistentCommandStopped(nullptr);
        worker.AwaitEnd();
        state.SetIterationTime(SecondsSince(start));
    }
}

std::vector<std::wstring> ParameterIds(int count) {
    std::vector<std::wstring> ids;
    for (int i = 0; i < count; ++i)
        ids.push_back(std::to_wstring(101000 + i));
    return ids;
}

/// One round over so many parameters.
void Round(benchmark::State& state, int count) {
    std::wstring list;
    for (const std::wstring& id : ParameterIds(count))
        list += (list.empty() ? L"" : L" ") + id;
    const auto command = PreparePersistent(
        CLSID_MonitorUpdater, {{L"parameterIDs", list}, {L"dsBaseName", L"B"}, {L"monitorID", L"gauge"}});
    CComPtr<IVantPersistentCommand> persistent;
    Require(command.QueryInterface(&persistent));
    for ([[maybe_unused]] auto _ : state) {
        Require(command->Execute());
        Require(persistent->Stop()); // so that the first round is the last
        const auto start = Clock::now();
        services.callback->RunOnThread();
        state.SetIterationTime(SecondsSince(start));
    }
    services.callback.Release();
    state.SetItemsProcessed(state.iterations() * count);
}

void PublishFloor(const std::wstring& id, const CComBSTR& base, const CComBSTR& monitor) {
    CComPtr<IUnknown> object;
    host.GetParameter(CComBSTR(id).Get(), 1, &object);
    CComPtr<IParameterOld> parameter;
    object.QueryInterface(&parameter);
    CComBSTR value;
    CComBSTR unitsKey;
    CComBSTR name;
    parameter->get_Text(&value);
    parameter->get_UnitsKey(&unitsKey);
    parameter->get_Name(&name);
    CComPtr<IECMServicesOld> engine;
    services.QueryInterface(IID_IECMServicesOld, reinterpret_cast<void**>(&engine));
    CComPtr<IUnknown> table;
    engine->GetUnits(&table);
    CComPtr<IUnit> unit;
    static_cast<IUnitsTable*>(table.Get())->GetUnit(unitsKey.Get(), &unit);
    CComBSTR units;
    unit->get_Text(&units);
    const std::wstring prefix = std::wstring(base.Text()) + id;
    host.SetValue(CComBSTR(prefix + L"_name").Get(), CComVariant(std::move(name)).Get());
    host.SetValue(CComBSTR(prefix + L"_value").Get(), CComVariant(std::move(value)).Get());
    host.SetValue(CComBSTR(prefix + L"_units").Get(), CComVariant(std::move(units)).Get());
    host.SetComponentProperty(CComBSTR(monitor).Get(), CComBSTR(L"parameter").Get(), CComBSTR(prefix).Get());
}

/// The same host calls, from identifiers that are split already.
void RoundFloor(benchmark::State& state, int count) {
    host.parameter = services.Object();
    const auto ids = ParameterIds(count);
    const CComBSTR base(L"B");
    const CComBSTR monitor(L"gauge");
    Event stop;
    for ([[maybe_unused]] auto _ : state) {
        stop.Set();
        const auto start = Clock::now();
        for (const std::wstring& id : ids)
            PublishFloor(id, base, monitor);
        stop.Wait(250);
        state.SetIterationTime(SecondsSince(start));
    }
    state.SetItemsProcessed(state.iterations() * count);
}

template <class Subject>
void Add(const std::string& title, void (*function)(benchmark::State&, Subject), Subject subject) {
    benchmark::RegisterBenchmark(title.c_str(), [function, subject](benchmark::State& state) {
        function(state, subject);
    })->UseManualTime();
}

} // namespace

void RegisterPersistentBenchmarks() {
    for (const Case& subject : Cases()) {
        const std::string name = std::string("Stop/") + subject.name;
        Add<const Case&>(name, StopLatency, subject);
        Add<const Case&>(name + "/floor", StopLatencyFloor, subject);
    }
    for (const int count : {10, 100, 1000, 10000}) {
        const std::string name = "Round/MonitorUpdater/" + std::to_string(count);
        Add<int>(name, Round, count);
        Add<int>(name + "/floor", RoundFloor, count);
    }
}

} // namespace vant::bench
