#include "ecm/ResultPolicy.h"
#include "tests/unit/framework/PersistentProbe.h"

#include <stdexcept>
#include <thread>

namespace vant::test {

namespace {

const char* const askForService = "QueryInterface(IThreadService)";
const char* const registerCallback = "RegisterCallback(IVantPersistentCommandImpl, Persistent Thread)";
constexpr std::uint32_t first = HostThreads::firstCookie;

/// The callback waits until the test runs it.
class WithoutThreads {
protected:
    explicit WithoutThreads(TestHost& host) { host.Threads().startsThreads = false; }
};
class RunOnce : public WithPersistentProbe<0>, WithoutThreads {
protected:
    RunOnce() : WithoutThreads(host) {}
};
class RunRepeatedly : public WithPersistentProbe<250>, WithoutThreads {
protected:
    RunRepeatedly() : WithoutThreads(host) {}
};

/// On a thread of its own, with a period that no test lasts.
class RunEveryMinute : public WithPersistentProbe<60'000> {};

// Executing

TEST_F(RunOnce, Execute_RegistersACallbackAndReturns) {
    EXPECT_EQ(S_OK, Execute());
    EXPECT_EQ((Calls{askForService, registerCallback}), host.calls);
    EXPECT_EQ(0, probe->runs);
}

TEST_F(RunOnce, Registration_HasNamesAndZeros) {
    Execute();
    const CallbackRecord& record = host.Threads().Record();
    EXPECT_EQ(L"IVantPersistentCommandImpl", record.ownerName);
    EXPECT_EQ(L"Persistent Thread", record.threadName);
    EXPECT_EQ(0u, record.argument);
    for (const std::uint32_t setting : record.settings)
        EXPECT_EQ(0u, setting);
}

TEST_F(RunOnce, Callback_RunsTheBodyOnceAndReturnsEFail) {
    Execute();
    EXPECT_EQ(E_FAIL, host.Threads().Run());
    EXPECT_EQ(1, probe->runs);
}

TEST_F(RunOnce, BodyThatDoesNotStopItself_IsNotReported) {
    Execute();
    host.ForgetCalls();
    host.Threads().Run();
    EXPECT_EQ(Calls{}, host.calls);
}

TEST_F(RunOnce, BodyThatThrows_EndsQuietly) {
    probe->body = [] { throw std::runtime_error("the body failed"); };
    EXPECT_EQ(S_OK, Execute());
    host.ForgetCalls();
    EXPECT_EQ(E_FAIL, host.Threads().Run());
    EXPECT_EQ(1, probe->runs);
    EXPECT_EQ(Calls{}, host.calls);
}

TEST_F(RunRepeatedly, BodyThatThrows_EndsTheLoop) {
    probe->body = [] { throw CComException(E_OUTOFMEMORY); };
    Execute();
    EXPECT_EQ(E_FAIL, host.Threads().Run());
    EXPECT_EQ(1, probe->runs);
}

TEST_F(RunOnce, CallbackThatRan_LeavesNothingBehind) {
    const LONG before = ModuleLock::Count();
    Execute();
    EXPECT_EQ(before + 1, ModuleLock::Count()); // the callback that the service holds
    host.Threads().Run();
    EXPECT_EQ(before, ModuleLock::Count());
}

TEST_F(RunOnce, Callback_HoldsNoReferenceToTheCommand) {
    Execute();
    command->AddRef();
    EXPECT_EQ(1u, command->Release());
}

TEST_F(RunOnce, Body_RunsOnTheServicesThread) {
    host.Threads().startsThreads = true;
    std::thread::id thread;
    probe->body = [&thread] { thread = std::this_thread::get_id(); };
    Execute();
    host.Threads().Join();
    EXPECT_NE(std::thread::id(), thread);
    EXPECT_NE(std::this_thread::get_id(), thread);
    EXPECT_EQ(E_FAIL, host.Threads().Record().result);
}

TEST_F(RunOnce, UndeclaredProperty_IsRefused) {
    EXPECT_EQ(E_INVALIDARG, SetProperty(*command.Get(), L"unknown", L""));
    EXPECT_EQ(S_OK, SetProperty(*command.Get(), L"value", L""));
    EXPECT_EQ(Calls{}, host.calls);
}

// Without a thread service that works

TEST_F(RunOnce, NoThreadService_NothingRunsAndNothingIsReported) {
    const auto uninitialised = CreateCommand<CPersistentProbe<0>>();
    auto* const object = static_cast<CPersistentProbe<0>*>(uninitialised.Get());
    const LONG before = ModuleLock::Count();
    EXPECT_EQ(S_OK, uninitialised->Execute());
    EXPECT_EQ(0, object->runs);
    EXPECT_EQ(before, ModuleLock::Count()); // no callback
    EXPECT_EQ(E_FAIL, object->StartThread(1, 0));
}

TEST_F(RunOnce, ExecutedBeforeInitialize_StartsNothingAfterwardsEither) {
    const auto late = CreateCommand<CPersistentProbe<0>>();
    EXPECT_EQ(S_OK, late->Execute());
    EXPECT_EQ(S_OK, late->Initialize(host.Context(), host.Controller()));
    host.ForgetCalls();
    EXPECT_EQ(S_OK, late->Execute());
    EXPECT_EQ(Calls{}, host.calls);
    EXPECT_EQ(0u, host.Threads().RegistrationCount());
}

TEST_F(RunOnce, ServiceWithoutItsInterface_NothingRunsAndNothingIsReported) {
    host.Threads().absent = true;
    EXPECT_EQ(S_OK, Execute());
    EXPECT_EQ(Calls{askForService}, host.calls);
}

TEST_F(RunOnce, ServiceWhoseInterfaceIsNull_NothingRunsAndNothingIsReported) {
    host.Threads().givesNothing = true;
    EXPECT_EQ(S_OK, Execute());
    EXPECT_EQ(Calls{askForService}, host.calls);
}

TEST_F(RunOnce, RegistrationThatFails_IsNotReported) {
    host.fail["RegisterCallback"] = E_ACCESSDENIED;
    EXPECT_EQ(S_OK, Execute());
    EXPECT_EQ((Calls{askForService, registerCallback}), host.calls);
    EXPECT_EQ(0u, host.Threads().RegistrationCount());
}

TEST_F(RunOnce, RegistrationThatFails_LeavesNoCallbackBehind) {
    const LONG before = ModuleLock::Count();
    host.fail["RegisterCallback"] = E_ACCESSDENIED;
    Execute();
    EXPECT_EQ(before, ModuleLock::Count());
}

TEST_F(RunOnce, ServiceThatThrows_IsNotReported) {
    host.ThrowAtCall(2);
    EXPECT_EQ(S_OK, Execute());
    EXPECT_EQ(S_OK, probe->StopThread(1)); // Nothing is registered.
    EXPECT_EQ((Calls{askForService, registerCallback, askForService}), host.calls);
}

// The management operations

TEST_F(RunOnce, ManagementOperations_BeforeTheFirstExecute_ReturnEFail) {
    EXPECT_EQ(E_FAIL, probe->StartThread(1, 0));
    EXPECT_EQ(E_FAIL, probe->StopThread(1));
    EXPECT_EQ(E_FAIL, probe->CallOperation12(1));
    EXPECT_EQ(E_FAIL, probe->CallOperation11(1));
    EXPECT_EQ(Calls{}, host.calls);
}

TEST_F(RunOnce, StartThread_PassesTheArgument) {
    Execute();
    EXPECT_EQ(S_OK, probe->StartThread(1, 42));
    EXPECT_EQ(42u, host.Threads().Record(first + 1).argument);
}

TEST_F(RunOnce, StartThread_UnknownId_DoesNothing) {
    Execute();
    host.ForgetCalls();
    for (const std::uint32_t id : {0u, 2u, 0xFFFFFFFFu})
        EXPECT_EQ(S_OK, probe->StartThread(id, 0)) << id;
    EXPECT_EQ(Calls(3, askForService), host.calls);
}

TEST_F(RunOnce, StartThread_ReturnsTheCodeOfAFailedRegistration) {
    Execute();
    host.fail["RegisterCallback"] = E_ACCESSDENIED;
    EXPECT_EQ(E_ACCESSDENIED, probe->StartThread(1, 0));
}

TEST_F(RunOnce, StartThread_ServiceWithoutItsInterface_Throws) {
    Execute();
    host.Threads().absent = true;
    EXPECT_THROW(probe->StartThread(1, 0), CComErrorHandlerException);
}

TEST_F(RunOnce, StopThread_UnregistersTheCookieOnce) {
    Execute();
    host.ForgetCalls();
    EXPECT_EQ(S_OK, probe->StopThread(1));
    EXPECT_EQ(S_OK, probe->StopThread(1));
    EXPECT_EQ((Calls{askForService, "UnregisterCallback(101)", askForService}), host.calls);
}

TEST_F(RunOnce, StopThread_ThatFails_KeepsTheCookie) {
    Execute();
    host.fail["UnregisterCallback"] = E_ACCESSDENIED;
    EXPECT_EQ(E_ACCESSDENIED, probe->StopThread(1));
    host.fail.clear();
    host.ForgetCalls();
    EXPECT_EQ(S_OK, probe->StopThread(1));
    EXPECT_EQ((Calls{askForService, "UnregisterCallback(101)"}), host.calls);
}

TEST_F(RunOnce, Operations11And12_PassTheCookieAndKeepIt) {
    Execute();
    host.ForgetCalls();
    EXPECT_EQ(S_OK, probe->CallOperation12(1));
    EXPECT_EQ(S_OK, probe->CallOperation11(1));
    EXPECT_EQ(S_OK, probe->CallOperation12(1));
    EXPECT_EQ((Calls{askForService, "Operation12(101)", askForService, "Operation11(101)", askForService,
                     "Operation12(101)"}),
              host.calls);
}

TEST_F(RunOnce, Operations11And12_ReturnTheServicesCode) {
    Execute();
    host.fail["Operation11"] = E_ACCESSDENIED;
    host.fail["Operation12"] = E_NOTIMPL;
    EXPECT_EQ(E_ACCESSDENIED, probe->CallOperation11(1));
    EXPECT_EQ(E_NOTIMPL, probe->CallOperation12(1));
}

TEST_F(RunOnce, ManagementOperations_IdWithoutRegistration_OnlyAskForTheService) {
    Execute();
    host.ForgetCalls();
    EXPECT_EQ(S_OK, probe->StopThread(2));
    EXPECT_EQ(S_OK, probe->CallOperation12(2));
    EXPECT_EQ(S_OK, probe->CallOperation11(2));
    EXPECT_EQ(Calls(3, askForService), host.calls);
}

TEST_F(RunOnce, ManagementOperations_ServiceWithoutItsInterface_ReturnItsCode) {
    Execute();
    host.Threads().absent = true;
    EXPECT_EQ(E_NOINTERFACE, probe->StopThread(1));
    EXPECT_EQ(E_NOINTERFACE, probe->CallOperation12(1));
    EXPECT_EQ(E_NOINTERFACE, probe->CallOperation11(1));
}

TEST_F(RunOnce, ManagementOperations_ServiceWhoseInterfaceIsNull_HaveNoInterface) {
    Execute();
    host.Threads().givesNothing = true;
    EXPECT_THROW(probe->StartThread(1, 0), CComErrorHandlerException);
    EXPECT_EQ(E_NOINTERFACE, probe->StopThread(1));
    EXPECT_EQ(E_NOINTERFACE, probe->CallOperation12(1));
    EXPECT_EQ(E_NOINTERFACE, probe->CallOperation11(1));
}

TEST_F(RunOnce, ManagementOperations_ServiceThatThrows_ReturnEFail) {
    Execute();
    host.ForgetCalls();
    host.ThrowAtCall(2);
    EXPECT_EQ(E_FAIL, probe->StopThread(1));
}

// Executing again

TEST_F(RunOnce, ExecutedAgain_RegistersAnotherCallback) {
    Execute();
    Execute();
    EXPECT_EQ((Calls{askForService, registerCallback, askForService, registerCallback}), host.calls);
    host.Threads().Run(first + 1);
    host.Threads().Run(first);
    EXPECT_EQ(2, probe->runs);
}

TEST_F(RunOnce, ExecutedAgain_KeepsTheNewestCookie) {
    Execute();
    Execute();
    host.ForgetCalls();
    EXPECT_EQ(S_OK, probe->StopThread(1));
    EXPECT_EQ(S_OK, probe->StopThread(1));
    EXPECT_EQ((Calls{askForService, "UnregisterCallback(102)", askForService}), host.calls);
}

TEST_F(RunOnce, ExecutedAgainInVain_KeepsTheEarlierCookie) {
    Execute();
    host.fail["RegisterCallback"] = E_ACCESSDENIED;
    Execute();
    host.ForgetCalls();
    EXPECT_EQ(S_OK, probe->StopThread(1));
    EXPECT_EQ((Calls{askForService, "UnregisterCallback(101)"}), host.calls);
}

TEST_F(RunOnce, ExecutedAgain_BeginsWithAnEventThatIsNotSignalled) {
    Execute();
    Stop();
    Execute();
    EXPECT_EQ(WAIT_TIMEOUT, probe->WaitForStop(0));
}

// Stopping

TEST_F(RunOnce, Stop_OnlySignalsAndTellsTheController) {
    Execute();
    host.ForgetCalls();
    EXPECT_EQ(S_OK, Stop());
    EXPECT_EQ(Calls{"PersistentCommandStopped()"}, host.calls);
    EXPECT_EQ(0, probe->runs);
    EXPECT_EQ(WAIT_OBJECT_0, probe->WaitForStop(0));
}

TEST_F(RunOnce, StoppedBeforeItsThreadRuns_TheBodyRunsAllTheSame) {
    Execute();
    Stop();
    host.Threads().Run();
    EXPECT_EQ(1, probe->runs);
}

TEST_F(RunRepeatedly, StoppedBeforeItsThreadRuns_TheBodyRunsOnce) {
    Execute();
    Stop();
    EXPECT_EQ(E_FAIL, host.Threads().Run());
    EXPECT_EQ(1, probe->runs);
}

TEST_F(RunRepeatedly, BodyThatStopsItself_IsNotRunAgain) {
    probe->body = [this] { EXPECT_EQ(S_OK, Stop()); };
    Execute();
    host.ForgetCalls();
    host.Threads().Run();
    EXPECT_EQ(1, probe->runs);
    EXPECT_EQ(Calls{"PersistentCommandStopped()"}, host.calls);
}

TEST_F(RunRepeatedly, WaitThatFails_EndsTheLoop) {
    // Without Execute there is no event to wait for.
    CComPtr<IUnknown>(host.Threads().Object()).Swap(probe->m_threadServiceRef);
    EXPECT_EQ(S_OK, probe->StartThread(1, 0));
    EXPECT_EQ(E_FAIL, host.Threads().Run());
    EXPECT_EQ(1, probe->runs);
}

TEST_F(RunEveryMinute, StoppedInRealTime_EndsWithinItsPeriod) {
    Event running;
    probe->body = [&running] { running.Set(); };
    Execute();
    running.Wait(INFINITE);
    Stop();
    host.Threads().Join();
    EXPECT_EQ(1, probe->runs);
}

TEST_F(RunOnce, StopBeforeAnyExecute_TellsTheController) {
    EXPECT_EQ(S_OK, Stop());
    EXPECT_EQ(Calls{"PersistentCommandStopped()"}, host.calls);
}

TEST_F(RunOnce, StopBeforeAnyExecute_LeavesNoSignal) {
    Stop();
    Execute();
    EXPECT_EQ(WAIT_TIMEOUT, probe->WaitForStop(0));
}

TEST_F(RunOnce, StopBeforeAnyExecute_ReturnsTheControllersCode) {
    host.fail["PersistentCommandStopped"] = E_ACCESSDENIED;
    EXPECT_EQ(E_ACCESSDENIED, Stop());
}

TEST_F(RunOnce, Stop_ControllerThatFails_IsReturnedAndTheEventSignalled) {
    host.fail["PersistentCommandStopped"] = E_ACCESSDENIED;
    Execute();
    EXPECT_EQ(E_ACCESSDENIED, Stop());
    EXPECT_EQ(WAIT_OBJECT_0, probe->WaitForStop(0));
}

TEST_F(RunOnce, Stop_ControllerThatThrows_IsReturnedAsEFail) {
    Execute();
    host.ForgetCalls();
    host.ThrowAtCall(1);
    EXPECT_EQ(E_FAIL, Stop());
}

TEST_F(RunOnce, StopWithoutController_ReturnsEPointer) {
    const auto uninitialised = CreateCommand<CPersistentProbe<0>>();
    EXPECT_EQ(E_POINTER, static_cast<CPersistentProbe<0>*>(uninitialised.Get())->Stop());
}

/// A command that is not initialised yet.
class StopDuringInitialize : public ::testing::Test {
protected:
    TestHost host;
    CComPtr<IVantCommand> command = CreateCommand<CPersistentProbe<0>>();
    CPersistentProbe<0>* probe = static_cast<CPersistentProbe<0>*>(command.Get());
};

TEST_F(StopDuringInitialize, HasNoControllerUntilInitializeHasSucceeded) {
    std::vector<HRESULT> codes;
    host.onCall = [&](const std::string& call) {
        if (call.starts_with("get_"))
            codes.push_back(probe->Stop());
    };
    EXPECT_EQ(S_OK, command->Initialize(host.Context(), host.Controller()));
    EXPECT_EQ(std::vector<HRESULT>(9, E_POINTER), codes);
    EXPECT_EQ(S_OK, probe->Stop());
    EXPECT_EQ(1u, host.stoppedCommands.size());
}

TEST_F(StopDuringInitialize, OnAnotherThread_TellsTheControllerOnceItIsThere) {
    for (int round = 0; round < 200; ++round) {
        command = CreateCommand<CPersistentProbe<0>>();
        probe = static_cast<CPersistentProbe<0>*>(command.Get());
        host.stoppedCommands.clear();
        std::thread stopping([this] {
            HRESULT code = E_POINTER;
            while (code == E_POINTER)
                code = probe->Stop();
            EXPECT_EQ(S_OK, code);
        });
        EXPECT_EQ(S_OK, command->Initialize(host.Context(), host.Controller()));
        stopping.join();
        EXPECT_EQ(std::vector<IVantPersistentCommand*>{probe}, host.stoppedCommands);
    }
}

TEST_F(RunOnce, StopTwice_TellsTheControllerTwiceAndSignalsOnce) {
    Execute();
    host.ForgetCalls();
    EXPECT_EQ(S_OK, Stop());
    EXPECT_EQ(S_OK, Stop());
    EXPECT_EQ(Calls(2, "PersistentCommandStopped()"), host.calls);
    EXPECT_EQ(WAIT_OBJECT_0, probe->WaitForStop(0));
    EXPECT_EQ(WAIT_TIMEOUT, probe->WaitForStop(0));
}

TEST_F(RunOnce, Stop_GivesTheControllerTheCommandsOwnInterface) {
    CComPtr<IVantPersistentCommand> persistent;
    ASSERT_EQ(S_OK, command.QueryInterface(&persistent));
    EXPECT_EQ(S_OK, persistent->Stop());
    EXPECT_EQ(std::vector<IVantPersistentCommand*>{persistent.Get()}, host.stoppedCommands);
}

TEST_F(RunOnce, Stop_LeavesNoReference) {
    Stop();
    command->AddRef();
    EXPECT_EQ(1u, command->Release());
}

TEST_F(RunOnce, Stop_DoesNotUnregister) {
    Execute();
    Stop();
    host.Threads().Run();
    host.ForgetCalls();
    EXPECT_EQ(S_OK, probe->CallOperation11(1));
    EXPECT_EQ((Calls{askForService, "Operation11(101)"}), host.calls);
}

// Interfaces

TEST_F(RunOnce, Interfaces_AreOneObject) {
    CComPtr<IVantPersistentCommand> persistent;
    ASSERT_EQ(S_OK, command.QueryInterface(&persistent));
    CComPtr<IVantCommand> again;
    ASSERT_EQ(S_OK, persistent.QueryInterface(&again));
    EXPECT_EQ(command.Get(), again.Get());
    CComPtr<IUnknown> unknown;
    CComPtr<IUnknown> unknownOfPersistent;
    ASSERT_EQ(S_OK, command.QueryInterface(&unknown));
    ASSERT_EQ(S_OK, persistent.QueryInterface(&unknownOfPersistent));
    EXPECT_EQ(unknown.Get(), unknownOfPersistent.Get());
    EXPECT_EQ(unknown.Get(), probe->GetControllingUnknown());
}

TEST_F(RunOnce, OtherInterfaces_AreRefused) {
    CComPtr<IThreadCallback> callback;
    EXPECT_EQ(E_NOINTERFACE, command.QueryInterface(&callback));
    EXPECT_FALSE(callback);
}

} // namespace

} // namespace vant::test
