// Several threads execute, stop and release persistent commands at random. Real time passes, but the commands
// wait many times shorter: a run that has begun to wait when another is executed cannot be stopped before its
// wait ends.

#include "framework/interfaces/ClassIds.h"
#include "framework/interfaces/VantCommand.h"
#include "platform/Clock.h"
#include "tests/module/BuiltModule.h"
#include "tests/support/Commands.h"
#include "tests/support/ConditionSet.h"
#include "tests/support/EngineHost.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <deque>
#include <gtest/gtest.h>
#include <memory>
#include <mutex>
#include <random>
#include <thread>
#include <utility>
#include <vector>

namespace vant::test {

namespace {

using namespace std::chrono_literals;

using PropertyTexts = std::vector<std::pair<std::wstring, std::wstring>>;

/// A host and one persistent command at a time, for all threads. The host keeps the command alive for as long
/// as one of its threads runs, as it must.
class Place {
public:
    Place(const BuiltModule& module, const CLSID& classId, PropertyTexts properties)
        : m_module(module), m_classId(classId), m_properties(std::move(properties)) {}
    ~Place() { EndLife(); }

    /// Executes the command, a new one if there is none. Nothing happens while another thread does so or
    /// ends the command's life.
    void Execute() {
        const std::unique_lock alone(m_changing, std::try_to_lock);
        if (!alone)
            return;
        if (!m_life)
            Begin();
        EXPECT_EQ(S_OK, m_life->command->Execute());
    }
    /// Stops the command, whatever else happens to it.
    void Stop() {
        CComPtr<IVantPersistentCommand> persistent;
        {
            const std::lock_guard lock(m_persistentGuard);
            persistent = m_persistent;
        }
        if (persistent) {
            EXPECT_EQ(S_OK, persistent->Stop());
        }
    }
    /// Ends the command's threads and releases it, unless another thread is just busy with it.
    void Release() {
        const std::unique_lock alone(m_changing, std::try_to_lock);
        if (alone)
            EndLife();
    }

    /// Whether more than one command has lived here.
    bool IsTried() const { return m_lives > 1; }

private:
    struct Life {
        Life() {
            host.parameters[L"190"] = {L"speed", L"750", CComVariant(LONG{750}), L"rpm"};
            for (const auto& [id, value] :
                 {std::pair(L"13191", 0), {L"13192", 100}, {L"13190", 0}, {L"101000", 1300}})
                host.parameters[id].value = CComVariant(LONG{value});
            host.dataStore[L"first"] = CComVariant(CComBSTR(L"text"));
            engine.units[L"rpm"] = L"1/min";
            failing.answers = {VARIANT_TRUE, VARIANT_TRUE, VARIANT_FALSE};
            failing.failureKey = L"first";
        }

        TestHost host;
        EngineServices engine{host};
        ConditionSet failing{host, L"failing"};
        CComPtr<IVantCommand> command;
    };

    void Begin() {
        m_life = std::make_unique<Life>();
        ASSERT_EQ(S_OK,
                  m_module.Create(m_classId, IID_IVantCommand, reinterpret_cast<void**>(&m_life->command)));
        ASSERT_EQ(S_OK, m_life->command->Initialize(m_life->host.Context(), m_life->host.Controller()));
        for (const auto& [name, value] : m_properties)
            EXPECT_EQ(S_OK, SetProperty(*m_life->command.Get(), name, value));
        const std::lock_guard lock(m_persistentGuard);
        EXPECT_EQ(S_OK, m_life->command.QueryInterface(&m_persistent));
        ++m_lives;
    }
    void EndLife() {
        if (!m_life)
            return;
        std::atomic<bool> ended{false};
        std::thread waiting([&] {
            m_life->host.Threads().Join();
            ended = true;
        });
        while (!ended) { // a signal ends one wait of one of the threads
            Stop();
            std::this_thread::sleep_for(100us);
        }
        waiting.join();
        {
            const std::lock_guard lock(m_persistentGuard);
            m_persistent.Release();
        }
        // Somebody may be in Stop still.
        CComPtr<IVantCommand> command = std::move(m_life->command);
        for (ULONG holders = 2; holders > 1; std::this_thread::yield()) {
            command->AddRef();
            holders = command->Release();
        }
        command.Release();
        m_life.reset(); // if references are still held, the host fails the test
    }

    const BuiltModule& m_module;
    const CLSID& m_classId;
    const PropertyTexts m_properties;
    std::mutex m_changing;
    std::mutex m_persistentGuard;
    std::unique_ptr<Life> m_life;
    CComPtr<IVantPersistentCommand> m_persistent;
    std::atomic<int> m_lives{0};
};

class PersistentStress : public ::testing::Test {
protected:
    PersistentStress() { UseRealTime(50); }
    ~PersistentStress() override { UseRealTime(); }
};

TEST_F(PersistentStress, CommandsExecutedStoppedAndReleasedByManyThreads_LeaveNothing) {
    const BuiltModule module;
    {
        std::deque<Place> places;
        for (int copy = 0; copy < 2; ++copy) {
            places.emplace_back(
                module, CLSID_Timer,
                PropertyTexts{{L"length", L"1000"}, {L"dsBase", L"count"}, {L"tickCommandID", L"tick"}});
            places.emplace_back(module, CLSID_StopConditionMonitor,
                                PropertyTexts{{L"dsSetID", L"failing"},
                                              {L"failTransitionID", L"bad"},
                                              {L"dsMessageID", L"message"}});
            places.emplace_back(module, CLSID_MonitorUpdater,
                                PropertyTexts{{L"parameterIDs", L"190 190"},
                                              {L"dsBaseName", L"B"},
                                              {L"monitorID", L"gauge"}});
            places.emplace_back(module, CLSID_ParameterSampler,
                                PropertyTexts{{L"parameterID", L"190"},
                                              {L"period", L"1"},
                                              {L"numSamples", L"3"},
                                              {L"dsTarget", L"mean"}});
            places.emplace_back(module, CLSID_ThrottleAdjuster,
                                PropertyTexts{{L"successTransition", L"good"}, {L"failTransition", L"bad"}});
        }
        const auto end = std::chrono::steady_clock::now() + 2s;
        const auto isTried = [](const Place& place) { return place.IsTried(); };
        std::vector<std::thread> threads;
        for (unsigned seed = 1; seed <= 4; ++seed) {
            threads.emplace_back([&, seed] {
                std::mt19937 random(seed);
                while (std::chrono::steady_clock::now() < end ||
                       !std::all_of(places.begin(), places.end(), isTried)) {
                    Place& place = places[random() % places.size()];
                    switch (random() % 8) {
                    case 0:
                        place.Release();
                        break;
                    case 1:
                    case 2:
                    case 3:
                        place.Stop();
                        break;
                    default:
                        place.Execute();
                    }
                    std::this_thread::sleep_for(std::chrono::microseconds(random() % 500));
                }
            });
        }
        for (std::thread& thread : threads)
            thread.join();
    }
    EXPECT_EQ(module.CanUnloadNow(), S_OK);
}

} // namespace

} // namespace vant::test
