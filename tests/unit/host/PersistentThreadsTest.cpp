#include "framework/DispatchImpl.h"
#include "host/record/CallScope.h"
#include "host/record/Vocabulary.h"
#include "host/services/Services.h"
#include "platform/ComObject.h"

#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <mutex>
#include <thread>

namespace vant::host {

namespace {

/// A callback whose work is written in the test.
class Callback : public CComObjectRootEx<CComMultiThreadModel>,
                 public IDispatchImpl<IThreadCallback, &IID_IThreadCallback> {
public:
    std::function<void()> work;

    HRESULT STDMETHODCALLTYPE RunOnThread() override {
        work();
        return E_FAIL;
    }

protected:
    ~Callback() = default;
};

/// A command that ends when it is stopped.
class Stoppable : public CComObjectRootEx<CComMultiThreadModel>, public IVantPersistentCommand {
public:
    Event stopped;
    IVantController* controller = nullptr;
    HRESULT told = E_FAIL;
    std::function<void()> beforeTelling = [] {};

    HRESULT STDMETHODCALLTYPE Stop() override {
        stopped.Set();
        beforeTelling();
        if (controller)
            told = controller->PersistentCommandStopped(this);
        return told;
    }

protected:
    ~Stoppable() = default;
    void* FindInterface(REFIID iid) noexcept {
        return iid == IID_IUnknown || iid == IID_IVantPersistentCommand
                   ? static_cast<IVantPersistentCommand*>(this)
                   : nullptr;
    }
};

template <class Object>
CComPtr<Object> Make() {
    CComObject<Object>* created = nullptr;
    CComObject<Object>::CreateInstance(&created);
    return CComPtr<Object>(created);
}

struct EndedThread {
    std::uint32_t cookie;
    HRESULT result;
    std::string thread;
    std::string command;
};

class PersistentThreadsTest : public ::testing::Test {
protected:
    PersistentThreadsTest() {
        journal.Observe([this](const Record& record) { records.push_back(record); });
    }

    HRESULT Register(std::function<void()> work) {
        const CComPtr<Callback> callback = Make<Callback>();
        callback->work = std::move(work);
        const CComBSTR name(L"Worker");
        const ThreadRegistration registration = {callback.Get(), 0, {}, nullptr, name.Get()};
        return services.threadService.RegisterCallback(callback.Get(), &registration, &cookie);
    }
    /// Registers as the command of that id, which runs until it is stopped.
    CComPtr<Stoppable> RegisterStoppable(const char* id) {
        CComPtr<Stoppable> command = Make<Stoppable>();
        command->controller = &services.controller;
        const CommandScope scope(id, command.Get());
        EXPECT_EQ(Register([running = command.Get()] { running->stopped.Wait(INFINITE); }), S_OK);
        return command;
    }
    const Record* Find(const std::string& operation) const {
        const auto found = std::find_if(records.begin(), records.end(),
                                        [&](const Record& record) { return record.operation == operation; });
        return found == records.end() ? nullptr : &*found;
    }

    std::vector<Record> records;
    Journal journal{[] { return std::int64_t{0}; }};
    std::mutex endedAccess;
    std::vector<EndedThread> ended; ///< In the order in which they ended, as their observer saw them.
    Services services{journal, [](const std::string&) { return S_OK; },
                      [this](std::uint32_t endedCookie, HRESULT result) {
                          const std::lock_guard lock(endedAccess);
                          ended.push_back({endedCookie, result, CurrentThread(), CurrentCommand()});
                      }};
    std::uint32_t cookie = 0;
};

TEST_F(PersistentThreadsTest, Callback_RunsOnceOnItsOwnThreadUnderItsNameAndCommand) {
    int runs = 0;
    std::string where;
    std::thread::id thread;
    {
        const CommandScope scope("watch");
        ASSERT_EQ(Register([&] {
                      ++runs;
                      where = CurrentThread() + '/' + CurrentCommand();
                      thread = std::this_thread::get_id();
                  }),
                  S_OK);
    }
    EXPECT_EQ(cookie, 1U);
    EXPECT_EQ(services.threadService.Operation12(cookie), S_OK);
    EXPECT_EQ(runs, 1);
    EXPECT_EQ(where, "Worker 1/watch");
    EXPECT_NE(thread, std::this_thread::get_id());
    ASSERT_EQ(ended.size(), 1U);
    EXPECT_EQ(ended[0].cookie, 1U);
    EXPECT_EQ(ended[0].result, E_FAIL);
    EXPECT_EQ(ended[0].thread, "Worker 1");
    EXPECT_EQ(ended[0].command, "watch");
}

TEST_F(PersistentThreadsTest, NullPointers_AreRefused) {
    const CComPtr<Callback> callback = Make<Callback>();
    const ThreadRegistration registration = {};
    EXPECT_EQ(services.threadService.RegisterCallback(nullptr, &registration, &cookie), E_POINTER);
    EXPECT_EQ(services.threadService.RegisterCallback(callback.Get(), nullptr, &cookie), E_POINTER);
    EXPECT_EQ(services.threadService.RegisterCallback(callback.Get(), &registration, nullptr), E_POINTER);
}

TEST_F(PersistentThreadsTest, Command_LivesUntilItsThreadHasReturned) {
    const std::size_t before = ModuleLock::Count();
    CComPtr<Stoppable> command = RegisterStoppable("watch");
    Stoppable* const kept = command.Get();
    command.Release();
    EXPECT_EQ(ModuleLock::Count(), before + 2); // with its callback
    kept->stopped.Set();
    EXPECT_EQ(services.threadService.Operation12(cookie), S_OK);
    EXPECT_EQ(ModuleLock::Count(), before);
}

TEST_F(PersistentThreadsTest, Operation11_ReturnsWhetherTheThreadRuns) {
    const CComPtr<Stoppable> command = RegisterStoppable("watch");
    EXPECT_EQ(services.threadService.Operation11(cookie), S_OK);
    command->stopped.Set();
    EXPECT_EQ(services.threadService.Operation12(cookie), S_OK);
    EXPECT_EQ(services.threadService.Operation11(cookie), S_FALSE);
    EXPECT_EQ(services.threadService.Operation11(99), HRESULT_FROM_WIN32(ERROR_NOT_FOUND));
}

TEST_F(PersistentThreadsTest, CookieOfAnEndedThread_LastsUntilItIsUnregistered) {
    ASSERT_EQ(Register([] {}), S_OK);
    const std::uint32_t first = cookie;
    EXPECT_EQ(services.threadService.Operation12(first), S_OK);
    ASSERT_EQ(Register([] {}), S_OK); // Joins the ended thread.
    EXPECT_EQ(services.threadService.Operation11(first), S_FALSE);
    EXPECT_EQ(services.threadService.Operation12(first), S_OK);
    EXPECT_EQ(services.threadService.UnregisterCallback(first), S_OK);
    EXPECT_EQ(services.threadService.UnregisterCallback(first), HRESULT_FROM_WIN32(ERROR_NOT_FOUND));
    EXPECT_EQ(services.threadService.Operation11(first), HRESULT_FROM_WIN32(ERROR_NOT_FOUND));
    EXPECT_EQ(services.threadService.Operation12(first), HRESULT_FROM_WIN32(ERROR_NOT_FOUND));
}

TEST_F(PersistentThreadsTest, CookieThatWasForgotten_StaysUnknownOnceItsThreadHasEnded) {
    const CComPtr<Stoppable> command = RegisterStoppable("watch");
    const std::uint32_t forgotten = cookie;
    ASSERT_EQ(services.threadService.UnregisterCallback(forgotten), S_OK);
    command->stopped.Set();
    while (services.persistentThreads.IsAnyRunning())
        std::this_thread::yield();
    EXPECT_EQ(services.threadService.Operation11(forgotten), HRESULT_FROM_WIN32(ERROR_NOT_FOUND));
    ASSERT_EQ(Register([] {}), S_OK); // Joins the ended thread.
    EXPECT_EQ(services.threadService.Operation11(forgotten), HRESULT_FROM_WIN32(ERROR_NOT_FOUND));
    EXPECT_EQ(services.threadService.UnregisterCallback(forgotten), HRESULT_FROM_WIN32(ERROR_NOT_FOUND));
}

TEST_F(PersistentThreadsTest, Thread_IsOneLevelDeeperThanTheCommandThatStartsIt) {
    std::size_t ofThread = 0;
    std::size_t ofItsThread = 0;
    {
        const CommandScope outer("outer");
        const CommandScope inner("inner");
        ASSERT_EQ(Register([&] {
                      ofThread = CommandDepth();
                      Register([&] { ofItsThread = CommandDepth(); });
                  }),
                  S_OK);
    }
    EXPECT_EQ(services.threadService.Operation12(1), S_OK);
    EXPECT_EQ(services.threadService.Operation12(2), S_OK);
    EXPECT_EQ(ofThread, 3U);
    EXPECT_EQ(ofItsThread, 4U);
}

TEST_F(PersistentThreadsTest, OneThreadMoreThanTheLimit_IsRefusedUntilOneHasEnded) {
    const CComPtr<Stoppable> first = RegisterStoppable("first");
    std::vector<CComPtr<Stoppable>> others;
    while (others.size() + 1 < maxLiveThreads)
        others.push_back(RegisterStoppable("other"));
    EXPECT_EQ(Register([] {}), HRESULT_FROM_WIN32(ERROR_MAX_THRDS_REACHED));
    first->stopped.Set();
    EXPECT_EQ(services.threadService.Operation12(1), S_OK);
    EXPECT_EQ(Register([] {}), S_OK);
    EXPECT_EQ(cookie, maxLiveThreads + 1);
}

TEST_F(PersistentThreadsTest, Operation12OnItsOwnThread_IsRefused) {
    HRESULT result = S_OK;
    Event registered;
    ASSERT_EQ(Register([&] {
                  registered.Wait(INFINITE);
                  result = services.threadService.Operation12(cookie);
              }),
              S_OK);
    registered.Set();
    EXPECT_EQ(services.threadService.Operation12(cookie), S_OK);
    EXPECT_EQ(result, HRESULT_FROM_WIN32(ERROR_POSSIBLE_DEADLOCK));
}

TEST_F(PersistentThreadsTest, UnregisteredCookie_IsForgottenWhileItsThreadGoesOn) {
    const CComPtr<Stoppable> command = RegisterStoppable("watch");
    EXPECT_EQ(services.threadService.UnregisterCallback(cookie), S_OK);
    EXPECT_EQ(services.threadService.UnregisterCallback(cookie), HRESULT_FROM_WIN32(ERROR_NOT_FOUND));
    EXPECT_EQ(services.threadService.Operation11(cookie), HRESULT_FROM_WIN32(ERROR_NOT_FOUND));
    EXPECT_EQ(services.threadService.Operation12(cookie), HRESULT_FROM_WIN32(ERROR_NOT_FOUND));
    EXPECT_TRUE(services.persistentThreads.IsAnyRunning());
    services.persistentThreads.End();
    EXPECT_EQ(ended.size(), 1U);
}

TEST_F(PersistentThreadsTest, Termination_StopsEveryRunningCommandOfThatIdAndNoOther) {
    const CComPtr<Stoppable> first = RegisterStoppable("watch");
    const std::uint32_t firstCookie = cookie;
    const CComPtr<Stoppable> second = RegisterStoppable("watch");
    const CComPtr<Stoppable> other = RegisterStoppable("other");
    const std::uint32_t otherCookie = cookie;
    EXPECT_EQ(services.controller.TerminateCommand(CComBSTR(L"watch").Get()), S_OK);
    EXPECT_EQ(first->told, S_OK);
    EXPECT_EQ(second->told, S_OK);
    EXPECT_EQ(services.threadService.Operation12(firstCookie), S_OK);
    EXPECT_EQ(services.threadService.Operation12(firstCookie + 1), S_OK);
    EXPECT_EQ(Find(operation::PersistentCommandStopped)->Text(argument::commandId), "watch");
    EXPECT_EQ(services.threadService.Operation11(otherCookie), S_OK);
    EXPECT_EQ(services.controller.TerminateCommand(CComBSTR(L"watch").Get()),
              HRESULT_FROM_WIN32(ERROR_NOT_FOUND));
}

TEST_F(PersistentThreadsTest, CommandWhoseThreadEndsWhileItIsStopped_IsKnownToTheController) {
    const CComPtr<Stoppable> command = RegisterStoppable("watch");
    command->beforeTelling = [this] { EXPECT_EQ(services.threadService.Operation12(cookie), S_OK); };
    EXPECT_EQ(services.controller.TerminateCommand(CComBSTR(L"watch").Get()), S_OK);
    EXPECT_EQ(command->told, S_OK);
    EXPECT_EQ(Find(operation::PersistentCommandStopped)->Text(argument::commandId), "watch");
    EXPECT_EQ(services.controller.PersistentCommandStopped(command.Get()),
              HRESULT_FROM_WIN32(ERROR_NOT_FOUND));
}

TEST_F(PersistentThreadsTest, StopOfACommandThatDoesNotRun_IsNotFound) {
    const CComPtr<Stoppable> command = Make<Stoppable>();
    EXPECT_EQ(services.controller.PersistentCommandStopped(command.Get()),
              HRESULT_FROM_WIN32(ERROR_NOT_FOUND));
    EXPECT_EQ(services.controller.PersistentCommandStopped(nullptr), E_POINTER);
}

TEST_F(PersistentThreadsTest, CommandThatCannotBeStopped_MakesTerminationFail) {
    Event end;
    {
        const CommandScope scope("plain", &services.service3);
        ASSERT_EQ(Register([&] { end.Wait(INFINITE); }), S_OK);
    }
    EXPECT_EQ(services.controller.TerminateCommand(CComBSTR(L"plain").Get()), E_NOINTERFACE);
    end.Set();
    services.persistentThreads.End();
}

TEST_F(PersistentThreadsTest, CommandThatCannotBeStopped_LetsTheOthersOfItsIdBeStopped) {
    Event end;
    const auto registerPlain = [&] {
        const CommandScope scope("watch", &services.service3);
        ASSERT_EQ(Register([&] { end.Wait(INFINITE); }), S_OK);
    };
    const CComPtr<Stoppable> first = RegisterStoppable("watch");
    registerPlain();
    const CComPtr<Stoppable> last = RegisterStoppable("watch");
    EXPECT_EQ(services.controller.TerminateCommand(CComBSTR(L"watch").Get()), E_NOINTERFACE);
    EXPECT_EQ(first->told, S_OK);
    EXPECT_EQ(last->told, S_OK);
    end.Set();
    services.persistentThreads.End();
}

TEST_F(PersistentThreadsTest, OnceClosed_RegistrationIsRefusedAndWaitsEnd) {
    const CComPtr<Stoppable> command = RegisterStoppable("watch");
    services.Close();
    EXPECT_EQ(services.threadService.Operation12(cookie), E_ABORT);
    EXPECT_EQ(Register([] {}), E_ABORT);
    EXPECT_EQ(services.threadService.Operation11(cookie), S_OK);
}

TEST_F(PersistentThreadsTest, End_StopsAndAwaitsEveryThread) {
    const CComPtr<Stoppable> first = RegisterStoppable("a");
    const CComPtr<Stoppable> second = RegisterStoppable("b");
    services.persistentThreads.End();
    EXPECT_FALSE(services.persistentThreads.IsAnyRunning());
    EXPECT_EQ(services.threadService.Operation11(1), S_FALSE);
    EXPECT_EQ(services.threadService.Operation11(2), S_FALSE);
}

TEST_F(PersistentThreadsTest, ThreadStartedByAThread_BelongsToItsStep) {
    Event inNextStep;
    Event end;
    services.persistentThreads.EnterStep();
    ASSERT_EQ(Register([&] {
                  inNextStep.Wait(INFINITE);
                  Register([&] { end.Wait(INFINITE); });
              }),
              S_OK);
    EXPECT_TRUE(services.persistentThreads.IsAnyOfStepRunning());
    services.persistentThreads.EnterStep();
    inNextStep.Set();
    EXPECT_EQ(services.threadService.Operation12(1), S_OK);
    EXPECT_TRUE(services.persistentThreads.IsAnyRunning());
    EXPECT_FALSE(services.persistentThreads.IsAnyOfStepRunning());
    end.Set();
    services.persistentThreads.End();
}

TEST_F(PersistentThreadsTest, ThreadService_IsOneObjectThatAlwaysHasItsInterface) {
    CComPtr<IUnknown> unknown(&services.threadService);
    CComPtr<IThreadService> service;
    CComPtr<IDispatch> dispatch;
    EXPECT_EQ(unknown.QueryInterface(&service), S_OK);
    EXPECT_EQ(unknown.QueryInterface(&dispatch), S_OK);
    EXPECT_EQ(static_cast<IDispatch*>(service.Get()), dispatch.Get());
}

} // namespace

} // namespace vant::host
