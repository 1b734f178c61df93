#include "tests/unit/framework/ProbeCommand.h"

#include <algorithm>
#include <string>
#include <type_traits>
#include <vector>

namespace vant::test {

namespace {

/// A service or controller of each host object, held by a command that was initialised.
constexpr LONG referencesOfAnInitialisedCommand = 10;

const std::vector<std::string> requests = {
    "get_CommandRunner()", "get_ComponentService()",    "get_Service3()",
    "get_DataStore()",     "get_PresentationService()", "get_ThreadService()",
    "get_Service7()",      "get_ProcedureController()", "get_ParameterService()"};

/// Which of the nine services the probe holds, in the order of the requests.
std::vector<bool> Held(const CProbeCommand& probe) {
    return {bool(probe.m_commandRunner), bool(probe.m_componentService),    bool(probe.m_service3),
            bool(probe.m_dataStore),     bool(probe.m_presentationService), bool(probe.m_threadService),
            bool(probe.m_service7),      bool(probe.m_procedureController), bool(probe.m_parameterService)};
}

std::vector<bool> FirstOnes(std::size_t count) {
    std::vector<bool> result(requests.size(), false);
    std::fill_n(result.begin(), count, true);
    return result;
}

using CommandInitialize = WithProbe;

TEST_F(CommandInitialize, NewCommand_HoldsNothing) {
    EXPECT_EQ(FirstOnes(0), Held(*probe));
    EXPECT_FALSE(probe->m_controller);
    EXPECT_FALSE(probe->m_initialised);
}

TEST_F(CommandInitialize, Services_AreRequestedOnceEachInTheFixedOrder) {
    EXPECT_EQ(S_OK, Initialize());
    EXPECT_EQ(requests, host.calls);
    EXPECT_EQ(FirstOnes(9), Held(*probe));
    EXPECT_TRUE(probe->m_initialised);
}

TEST_F(CommandInitialize, EveryMember_HoldsItsOwnService) {
    ASSERT_EQ(S_OK, Initialize());
    const auto expect = [this](const auto& member, auto request) {
        std::remove_cvref_t<decltype(member)> service;
        ASSERT_EQ(S_OK, (host.Context()->*request)(&service));
        EXPECT_EQ(service.Get(), member.Get());
    };
    expect(probe->m_commandRunner, &IVantContext::get_CommandRunner);
    expect(probe->m_componentService, &IVantContext::get_ComponentService);
    expect(probe->m_service3, &IVantContext::get_Service3);
    expect(probe->m_dataStore, &IVantContext::get_DataStore);
    expect(probe->m_presentationService, &IVantContext::get_PresentationService);
    expect(probe->m_threadService, &IVantContext::get_ThreadService);
    expect(probe->m_service7, &IVantContext::get_Service7);
    expect(probe->m_procedureController, &IVantContext::get_ProcedureController);
    expect(probe->m_parameterService, &IVantContext::get_ParameterService);
    EXPECT_EQ(host.Controller(), probe->m_controller.Get());
}

TEST_F(CommandInitialize, Command_HoldsOneReferenceToEachAndReleasesThemAtItsEnd) {
    ASSERT_EQ(S_OK, Initialize());
    EXPECT_EQ(referencesOfAnInitialisedCommand, host.OutstandingReferences());
    command.Release();
    EXPECT_EQ(0, host.OutstandingReferences());
}

TEST_F(CommandInitialize, NullController_IsAccepted) {
    EXPECT_EQ(S_OK, probe->Initialize(host.Context(), nullptr));
    EXPECT_FALSE(probe->m_controller);
    EXPECT_TRUE(probe->m_initialised);
}

TEST_F(CommandInitialize, NullContext_ReturnsPointerAndMayBeTriedAgain) {
    EXPECT_EQ(E_POINTER, probe->Initialize(nullptr, host.Controller()));
    EXPECT_FALSE(probe->m_initialised);
    EXPECT_EQ(0, host.OutstandingReferences());
    EXPECT_EQ(S_OK, Initialize());
}

TEST_F(CommandInitialize, SecondTime_IsRefusedAndLeavesTheFirstServicesInPlace) {
    ASSERT_EQ(S_OK, Initialize());
    IDataStore* const dataStore = probe->m_dataStore.Get();
    host.ForgetCalls();
    TestHost other;
    EXPECT_EQ(E_UNEXPECTED, probe->Initialize(other.Context(), other.Controller()));
    EXPECT_EQ(E_UNEXPECTED, probe->Initialize(nullptr, nullptr));
    EXPECT_EQ(dataStore, probe->m_dataStore.Get());
    EXPECT_EQ(host.Controller(), probe->m_controller.Get());
    EXPECT_TRUE(host.calls.empty());
    EXPECT_TRUE(other.calls.empty());
    EXPECT_EQ(referencesOfAnInitialisedCommand, host.OutstandingReferences());
}

TEST_F(CommandInitialize, SuccessCodeOfTheLastRequest_IsReturned) {
    host.fail["get_ParameterService"] = S_FALSE;
    EXPECT_EQ(S_FALSE, Initialize());
    EXPECT_TRUE(probe->m_initialised);
}

TEST_F(CommandInitialize, SuccessCodeOfAnEarlierRequest_IsNotReturned) {
    host.fail["get_DataStore"] = S_FALSE;
    EXPECT_EQ(S_OK, Initialize());
}

TEST_F(CommandInitialize, ControllerHeldBefore_IsReleased) {
    TestHost earlier;
    probe->m_controller = earlier.Controller();
    ASSERT_EQ(S_OK, Initialize());
    EXPECT_EQ(host.Controller(), probe->m_controller.Get());
    EXPECT_EQ(0, earlier.OutstandingReferences());
}

TEST_F(CommandInitialize, SameControllerHeldBefore_IsHeldOnce) {
    probe->m_controller = host.Controller();
    ASSERT_EQ(S_OK, Initialize());
    EXPECT_EQ(referencesOfAnInitialisedCommand, host.OutstandingReferences());
}

/// The nine requests, numbered from 1.
class InitializeRequest : public WithProbe, public ::testing::WithParamInterface<std::size_t> {};
INSTANTIATE_TEST_SUITE_P(Each, InitializeRequest, ::testing::Range<std::size_t>(1, 10));

TEST_P(InitializeRequest, Failing_EndsWithItsCodeAndKeepsTheServicesBefore) {
    host.FailCall(GetParam(), E_OUTOFMEMORY);
    EXPECT_EQ(E_OUTOFMEMORY, Initialize());
    EXPECT_EQ(GetParam(), host.CallCount());
    EXPECT_EQ(FirstOnes(GetParam() - 1), Held(*probe));
    EXPECT_FALSE(probe->m_controller);
    EXPECT_FALSE(probe->m_initialised);
}

TEST_P(InitializeRequest, Failing_MayBeTriedAgainAndLeaksNothing) {
    host.FailCall(GetParam(), E_FAIL);
    ASSERT_EQ(E_FAIL, Initialize());
    host.ForgetCalls();
    host.FailCall(0, S_OK);
    EXPECT_EQ(S_OK, Initialize());
    EXPECT_EQ(requests, host.calls);
    EXPECT_EQ(referencesOfAnInitialisedCommand, host.OutstandingReferences());
    command.Release();
    EXPECT_EQ(0, host.OutstandingReferences());
}

TEST_P(InitializeRequest, Failing_MayBeTriedAgainWithAnotherHost) {
    TestHost first;
    first.FailCall(GetParam(), E_FAIL);
    ASSERT_EQ(E_FAIL, probe->Initialize(first.Context(), first.Controller()));
    EXPECT_EQ(S_OK, Initialize());
    EXPECT_EQ(0, first.OutstandingReferences());
    EXPECT_EQ(referencesOfAnInitialisedCommand, host.OutstandingReferences());
}

TEST_P(InitializeRequest, FailingTwice_LeaksNothing) {
    host.FailCall(GetParam(), E_FAIL);
    ASSERT_EQ(E_FAIL, Initialize());
    host.ForgetCalls();
    EXPECT_EQ(E_FAIL, Initialize());
    EXPECT_EQ(static_cast<LONG>(GetParam() - 1), host.OutstandingReferences());
}

TEST_P(InitializeRequest, FailingTheSecondTime_KeepsWhatTheFirstAttemptFilled) {
    TestHost first;
    first.FailCall(9, E_FAIL);
    ASSERT_EQ(E_FAIL, probe->Initialize(first.Context(), first.Controller()));
    host.FailCall(GetParam(), E_OUTOFMEMORY);
    EXPECT_EQ(E_OUTOFMEMORY, Initialize());
    EXPECT_EQ(FirstOnes(8), Held(*probe));
    // Requests that succeeded replaced what the first attempt had filled.
    const auto replaced = static_cast<LONG>(GetParam() - 1);
    EXPECT_EQ(replaced, host.OutstandingReferences());
    EXPECT_EQ(8 - replaced, first.OutstandingReferences());
    command.Release();
    EXPECT_EQ(0, first.OutstandingReferences());
    EXPECT_EQ(0, host.OutstandingReferences());
}

TEST_P(InitializeRequest, Failing_ReleasesWhatItFilledAtTheCommandsEnd) {
    host.FailCall(GetParam(), E_FAIL);
    ASSERT_EQ(E_FAIL, Initialize());
    command.Release();
    EXPECT_EQ(0, host.OutstandingReferences());
}

TEST_P(InitializeRequest, Throwing_ReturnsTheCodeOfTheRequestBeforeAndMayBeTriedAgain) {
    host.ThrowAtCall(GetParam());
    // Before the first request the code is a failure; after it, that of a call that went well.
    EXPECT_EQ(GetParam() == 1 ? E_FAIL : S_OK, Initialize());
    EXPECT_FALSE(probe->m_initialised);
    EXPECT_EQ(FirstOnes(GetParam() - 1), Held(*probe));
    EXPECT_FALSE(probe->m_controller);
    host.ForgetCalls();
    host.ThrowAtCall(0);
    EXPECT_EQ(S_OK, Initialize());
    EXPECT_TRUE(probe->m_initialised);
    EXPECT_EQ(referencesOfAnInitialisedCommand, host.OutstandingReferences());
}

} // namespace

} // namespace vant::test
