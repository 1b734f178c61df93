#include "host/runner/Runner.h"

#include "host/procedure/ProcedureReader.h"
#include "host/record/CallScope.h"
#include "host/record/Json.h"
#include "host/record/Vocabulary.h"
#include "tests/unit/host/BuiltModule.h"
#include "tests/unit/host/ScriptedFactory.h"

#include <algorithm>
#include <atomic>
#include <gtest/gtest.h>
#include <thread>

namespace vant::host {

namespace {

constexpr const char* ends = "[steps.good]\nend = 'passed'\n[steps.bad]\nend = 'failed'\n";

/// Commands that are named like their classes, which have no properties.
std::string Commands(std::initializer_list<const char*> names) {
    std::string toml;
    for (const char* const name : names)
        toml += std::string("[commands.") + name + "]\nclass = '" + name + "'\n";
    return toml;
}

class RunnerTest : public ::testing::Test {
protected:
    RunnerTest() {
        journal.Observe([this](const Record& record) { records.push_back(record); });
        const auto note = [this](const char* name, HRESULT result) {
            return [this, name, result](const test::Scene&) {
                executed.push_back(name);
                return result;
            };
        };
        factory.classes["ok"] = note("ok", S_OK);
        factory.classes["other"] = note("other", S_OK);
        factory.classes["fail"] = note("fail", E_FAIL);
    }

    void Read(const std::string& steps) {
        Diagnostics found;
        procedure = ReadProcedure("name = 'n'\nstart = 's'\n" + steps + ends, found);
        for (const Diagnostic& each : found.Sorted())
            EXPECT_EQ(each.severity, Severity::Warning) << each.Text("f");
    }
    Verdict Run(const std::string& steps, const CommandFactory& commands) {
        Read(steps);
        Runner runner(procedure, commands, journal, settings);
        const Verdict verdict = runner.Run();
        EXPECT_TRUE(runner.StillHeld().empty());
        return verdict;
    }
    Verdict Run(const std::string& steps) { return Run(steps, factory); }

    std::vector<std::string> StepsEntered() const {
        std::vector<std::string> steps;
        for (const Record& record : records) {
            if (record.operation == event::StepEntered)
                steps.push_back(record.Text(argument::step));
        }
        return steps;
    }
    const Record& Only(const std::string& operation) const {
        const auto matches = [&](const Record& record) { return record.operation == operation; };
        EXPECT_EQ(std::count_if(records.begin(), records.end(), matches), 1) << operation;
        return *std::find_if(records.begin(), records.end(), matches);
    }
    std::string Reason() const { return records.back().Text(argument::reason); }

    std::vector<Record> records;
    std::vector<std::string> executed;
    Journal journal{[] { return std::int64_t{0}; }};
    test::ScriptedFactory factory;
    Procedure procedure;
    RunSettings settings{.allowFailedCalls = true};
};

using Texts = std::vector<std::string>;

TEST_F(RunnerTest, Step_RunsItsCommandsInOrderAndLeadsToNext) {
    EXPECT_EQ(Run(Commands({"ok", "other"}) + "[steps.s]\nrun = ['ok', 'other', 'ok']\nnext = 'good'\n"),
              Verdict::Passed);
    EXPECT_EQ(executed, (Texts{"ok", "other", "ok"}));
    EXPECT_EQ(StepsEntered(), (Texts{"s", "good"}));
    EXPECT_EQ(Only(event::TransitionFollowed).Text(argument::key), "next");
    EXPECT_EQ(Reason(), "step 'good'");
}

TEST_F(RunnerTest, RevisionAuthorAndTags_AreInTheJournal) {
    settings.tags = {{"serial", "4711"}};
    Run("revision = 'B'\nauthor = 'N'\n[steps.s]\nnext = 'good'\n");
    EXPECT_EQ(records.at(0).Text(argument::revision), "B");
    EXPECT_EQ(records.at(0).Text(argument::author), "N");
    EXPECT_EQ(records.at(1).operation, event::TagGiven);
    EXPECT_EQ(records.at(1).Text(argument::value), "4711");
}

TEST_F(RunnerTest, StepThatEndsFailed_GivesThatVerdict) {
    EXPECT_EQ(Run("[steps.s]\nnext = 'bad'\n"), Verdict::Failed);
    EXPECT_EQ(records.back().operation, event::ProcedureEnded);
    EXPECT_EQ(records.back().Text(argument::verdict), "failed");
}

TEST_F(RunnerTest, ChosenTransition_EndsTheStepAfterTheCommandAndBeatsNext) {
    factory.classes["choose"] = [](const test::Scene& scene) { return scene.SetTransition(L"weak"); };
    EXPECT_EQ(Run(Commands({"ok", "choose"}) +
                  "[steps.s]\nrun = ['choose', 'ok']\nnext = 'good'\non = { weak = 'bad' }\n"),
              Verdict::Failed);
    EXPECT_TRUE(executed.empty());
    EXPECT_EQ(Only(event::TransitionFollowed).Text(argument::key), "on");
    EXPECT_EQ(Only(event::TransitionFollowed).Text(argument::transitionId), "weak");
}

TEST_F(RunnerTest, LastOfSeveralChosenTransitions_IsFollowed) {
    factory.classes["choose"] = [](const test::Scene& scene) {
        scene.SetTransition(L"weak");
        return scene.SetTransition(L"good");
    };
    EXPECT_EQ(
        Run(Commands({"choose"}) + "[steps.s]\nrun = ['choose']\nnext = 'bad'\non = { weak = 'bad' }\n"),
        Verdict::Passed);
}

TEST_F(RunnerTest, Transition_IsLookedUpInTheTableBeforeTheSteps) {
    factory.classes["choose"] = [](const test::Scene& scene) { return scene.SetTransition(L"good"); };
    EXPECT_EQ(Run(Commands({"choose"}) + "[steps.s]\nrun = ['choose']\non = { good = 'bad' }\n"),
              Verdict::Failed);
}

TEST_F(RunnerTest, UnknownTransition_IsRefusedAndNextIsFollowed) {
    HRESULT result = S_OK;
    factory.classes["choose"] = [&result](const test::Scene& scene) {
        result = scene.SetTransition(L"nowhere");
        return S_OK;
    };
    EXPECT_EQ(Run(Commands({"choose"}) + "[steps.s]\nrun = ['choose']\nnext = 'good'\n"), Verdict::Passed);
    EXPECT_EQ(result, E_INVALIDARG);
}

TEST_F(RunnerTest, EmptyTransition_ChoosesNothingAndKeepsAnEarlierChoice) {
    factory.classes["choose"] = [](const test::Scene& scene) {
        scene.SetTransition(L"good");
        return scene.SetTransition(L"");
    };
    factory.classes["none"] = [](const test::Scene& scene) { return scene.SetTransition(L""); };
    EXPECT_EQ(Run(Commands({"choose", "none"}) + "[steps.s]\nrun = ['none', 'choose']\nnext = 'bad'\n"),
              Verdict::Passed);
}

TEST_F(RunnerTest, TransitionOfAnotherStepsTable_IsRefused) {
    factory.classes["choose"] = [](const test::Scene& scene) { return scene.SetTransition(L"weak"); };
    EXPECT_EQ(Run(Commands({"choose", "ok"}) + "[steps.s]\nrun = ['ok']\nnext = 't'\non = { weak = 'good' }\n"
                                               "[steps.t]\nrun = ['choose']\nnext = 'good'\n"),
              Verdict::Error);
    EXPECT_EQ(Reason(),
              "command 'choose' failed in step 't': 'choose' ProcedureController.SetTransition weak: "
              "invalid argument, 0x80070057");
}

TEST_F(RunnerTest, NothingChosenWithoutNext_IsAnError) {
    EXPECT_EQ(Run(Commands({"ok"}) + "[steps.s]\nrun = ['ok']\non = { weak = 'good' }\n"), Verdict::Error);
    EXPECT_EQ(Reason(), "no transition was chosen in step 's'");
}

TEST_F(RunnerTest, FailedCommand_EndsTheRunWithoutRunningTheRest) {
    EXPECT_EQ(Run(Commands({"ok", "fail"}) + "[steps.s]\nrun = ['fail', 'ok']\nnext = 'good'\n"),
              Verdict::Error);
    EXPECT_EQ(executed, (Texts{"fail"}));
    EXPECT_EQ(Reason(), "command 'fail' failed in step 's': 'fail' failed: unspecified failure, 0x80004005");
    EXPECT_EQ(StepsEntered(), (Texts{"s"}));
}

TEST_F(RunnerTest, FailedCommand_LeadsToTheStepUnderFailed) {
    EXPECT_EQ(Run(Commands({"ok", "fail"}) +
                  "[steps.s]\nrun = ['fail', 'ok']\nnext = 'bad'\nfailed = 'safe'\n"
                  "[steps.safe]\nrun = ['ok']\nnext = 'good'\n"),
              Verdict::Passed);
    EXPECT_EQ(executed, (Texts{"fail", "ok"}));
    EXPECT_EQ(StepsEntered(), (Texts{"s", "safe", "good"}));
}

TEST_F(RunnerTest, FailedCommandThatChose_LeadsWhereItChose) {
    factory.classes["choose"] = [](const test::Scene& scene) {
        scene.SetTransition(L"good");
        return E_FAIL;
    };
    EXPECT_EQ(Run(Commands({"choose"}) + "[steps.s]\nrun = ['choose']\nnext = 'bad'\nfailed = 'bad'\n"),
              Verdict::Passed);
}

TEST_F(RunnerTest, EveryFailureOfACommandsLife_LeadsToFailedAndNamesItsPhase) {
    const std::string steps = "[steps.s]\nrun = ['ok']\nnext = 'bad'\nfailed = 'good'\n";

    factory.initializeResult = E_NOINTERFACE;
    EXPECT_EQ(Run(Commands({"ok"}) + steps), Verdict::Passed);
    EXPECT_EQ(Only(event::CommandEnded).Text(argument::phase), "initialize");
    EXPECT_EQ(Only(event::CommandEnded).result, E_NOINTERFACE);
    factory.initializeResult = S_OK;

    records.clear();
    EXPECT_EQ(Run("[commands.ok]\nclass = 'ok'\nproperties = { refused = '1' }\n" + steps), Verdict::Passed);
    EXPECT_EQ(Only(event::CommandEnded).Text(argument::phase), "set property");
    EXPECT_EQ(Only(event::CommandEnded).result, E_INVALIDARG);

    records.clear();
    factory.createResult = E_OUTOFMEMORY;
    EXPECT_EQ(Run(Commands({"ok"}) + steps), Verdict::Passed);
    EXPECT_EQ(Only(event::CommandEnded).Text(argument::phase), "create");
    EXPECT_EQ(Only(event::CommandEnded).result, E_OUTOFMEMORY);
    EXPECT_TRUE(executed.empty());
}

TEST_F(RunnerTest, EveryExecution_CreatesANewObjectWithTheProperties) {
    std::vector<std::wstring> values;
    factory.classes["ok"] = [&](const test::Scene& scene) {
        values.push_back(scene.properties.at(L"value"));
        return S_OK;
    };
    EXPECT_EQ(Run("[commands.a]\nclass = 'ok'\nproperties = { value = '1' }\n"
                  "[steps.s]\nrun = ['a', 'a']\nnext = 'good'\n"),
              Verdict::Passed);
    EXPECT_EQ(values, (std::vector<std::wstring>{L"1", L"1"}));
    EXPECT_EQ(std::count_if(records.begin(), records.end(),
                            [](const Record& record) { return record.operation == event::CommandCreated; }),
              2);
}

TEST_F(RunnerTest, UnknownCommandId_IsRefused) {
    HRESULT result = S_OK;
    HRESULT resultOfThread = S_OK;
    factory.classes["ask"] = [&](const test::Scene& scene) {
        result = scene.RunCommand(L"unknown");
        resultOfThread =
            scene.Service(&IVantContext::get_CommandRunner)->RunCommandFromThread(CComBSTR(L"").Get());
        return S_OK;
    };
    EXPECT_EQ(Run(Commands({"ask"}) + "[steps.s]\nrun = ['ask']\nnext = 'good'\n"), Verdict::Passed);
    EXPECT_EQ(result, E_INVALIDARG);
    EXPECT_EQ(resultOfThread, E_INVALIDARG);
}

TEST_F(RunnerTest, CommandThatRunsItself_IsStoppedAtTheDepthLimit) {
    HRESULT innermost = S_OK;
    std::size_t deepest = 0;
    factory.classes["self"] = [&](const test::Scene& scene) {
        deepest = std::max(deepest, CommandDepth());
        const HRESULT result = scene.RunCommand(L"self");
        if (innermost == S_OK)
            innermost = result;
        return result;
    };
    EXPECT_EQ(Run(Commands({"self"}) + "[steps.s]\nrun = ['self']\nnext = 'good'\n"), Verdict::Error);
    EXPECT_EQ(deepest, maxCommandDepth);
    EXPECT_EQ(innermost, HRESULT_FROM_WIN32(ERROR_STACK_OVERFLOW));
    EXPECT_EQ(CommandDepth(), 0U);
}

TEST_F(RunnerTest, CommandFromAnotherThread_RunsThereUnderThatName) {
    factory.classes["ask"] = [](const test::Scene& scene) {
        HRESULT result = E_FAIL;
        std::thread([&] {
            const ThreadScope name("worker");
            result =
                scene.Service(&IVantContext::get_CommandRunner)->RunCommandFromThread(CComBSTR(L"ok").Get());
        }).join();
        return result;
    };
    EXPECT_EQ(Run(Commands({"ask", "ok"}) + "[steps.s]\nrun = ['ask']\nnext = 'good'\n"), Verdict::Passed);
    EXPECT_EQ(executed, (Texts{"ok"}));
    const Record& asked = Only(operation::RunCommandFromThread);
    EXPECT_EQ(asked.thread, "worker");
    EXPECT_EQ(asked.result, S_OK);
}

TEST_F(RunnerTest, AbortInACommand_RunsNoOtherCommandAndFollowsNoTransition) {
    Runner* running = nullptr;
    HRESULT afterwards = S_OK;
    factory.classes["abort"] = [&](const test::Scene& scene) {
        running->Abort();
        afterwards = scene.RunCommand(L"ok");
        return E_FAIL;
    };
    Read(Commands({"abort", "ok"}) + "[steps.s]\nrun = ['abort', 'ok']\nnext = 'good'\nfailed = 'bad'\n");
    Runner runner(procedure, factory, journal);
    running = &runner;
    EXPECT_EQ(runner.Run(), Verdict::Aborted);
    EXPECT_EQ(afterwards, E_ABORT);
    EXPECT_TRUE(executed.empty());
    EXPECT_EQ(StepsEntered(), (Texts{"s"}));
    EXPECT_EQ(records.back().operation, event::ProcedureEnded);
    EXPECT_EQ(records.back().Text(argument::verdict), "aborted");
    EXPECT_TRUE(runner.StillHeld().empty());
}

TEST_F(RunnerTest, AbortFromOutside_EndsAProcedureThatNeverEnds) {
    Read("[steps.s]\nnext = 't'\n[steps.t]\nnext = 's'\n");
    std::atomic<int> entered = 0;
    journal.Observe([&entered](const Record&) { ++entered; });
    Runner runner(procedure, factory, journal);
    std::thread user([&] {
        while (entered < 10)
            std::this_thread::yield();
        runner.Abort();
    });
    EXPECT_EQ(runner.Run(), Verdict::Aborted);
    user.join();
}

TEST_F(RunnerTest, AbortBeforeTheRun_EntersNoStep) {
    Read("[steps.s]\nnext = 'good'\n");
    Runner runner(procedure, factory, journal);
    runner.Abort();
    EXPECT_EQ(runner.Run(), Verdict::Aborted);
    EXPECT_TRUE(StepsEntered().empty());
}

TEST_F(RunnerTest, CommandThatKeepsAService_IsReported) {
    CComPtr<IDataStore> leaked;
    factory.classes["leak"] = [&](const test::Scene& scene) {
        leaked = scene.Service(&IVantContext::get_DataStore);
        return S_OK;
    };
    Read(Commands({"leak"}) + "[steps.s]\nrun = ['leak']\nnext = 'good'\n");
    Runner runner(procedure, factory, journal);
    EXPECT_EQ(runner.Run(), Verdict::Passed);
    EXPECT_EQ(runner.StillHeld(), (Texts{"DataStore"}));
    leaked.Release();
}

TEST_F(RunnerTest, InterceptedCall_FailsTheCommandThatMakesIt) {
    const LoadedModule module(test::BuiltModuleFile());
    Read("[commands.write]\nclass = 'DataStoreWriter'\nproperties = { dsLocation = 'a', value = '1' }\n"
         "[steps.s]\nrun = ['write', 'write']\nnext = 'bad'\nfailed = 'good'\n");
    Runner runner(procedure, module, journal, settings);
    int writes = 0;
    runner.Intercept([&writes](const Record& call) -> std::optional<HRESULT> {
        if (call.operation == operation::SetValue && ++writes == 2)
            return E_ACCESSDENIED;
        return std::nullopt;
    });
    EXPECT_EQ(runner.Run(), Verdict::Passed);
    EXPECT_EQ(writes, 2);
    EXPECT_TRUE(runner.StillHeld().empty());
}

TEST_F(RunnerTest, DataEntries_KeepTheirTypesAndAreRecordedAtTheEnd) {
    factory.classes["write"] = [](const test::Scene& scene) {
        const auto store = scene.Service(&IVantContext::get_DataStore);
        CComVariant number;
        store->GetValue(CComBSTR(L"whole").Get(), &number);
        EXPECT_EQ(number.Get().vt, VT_I4);
        return store->SetValue(CComBSTR(L"new").Get(), CComVariant(2.5).Get());
    };
    Run(Commands({"write"}) + "[data]\nwhole = 7\n[steps.s]\nrun = ['write']\nnext = 'good'\n");
    EXPECT_EQ(*Only(event::DataGiven).Find(argument::value), Value(std::int64_t{7}));
    Texts left;
    for (const Record& record : records) {
        if (record.operation == event::DataLeft)
            left.push_back(record.Text(argument::name) + '=' + ToJson(*record.Find(argument::value)).dump());
    }
    EXPECT_EQ(left, (Texts{"new=2.5", "whole=7"}));
}

TEST_F(RunnerTest, BuiltModule_JournalHoldsEveryCallOfNestedCommands) {
    const LoadedModule module(test::BuiltModuleFile());
    EXPECT_EQ(Run("[commands.outer]\nclass = 'CompositeCommand'\nproperties = { commandIDList = 'write' }\n"
                  "[commands.write]\nclass = 'DataStoreWriter'\n"
                  "properties = { dsLocation = 'a', value = '\u00E9' }\n"
                  "[steps.s]\nrun = ['outer']\nnext = 'good'\n",
                  module),
              Verdict::Passed);
    EXPECT_TRUE(module.CanUnload());
    std::string told;
    for (const Record& record : records) {
        if (record.service != "Context")
            told += record.command + ' ' + record.service + '.' + record.operation +
                    ToJson(record)["arguments"].dump() + '\n';
    }
    EXPECT_EQ(told, " Runner.ProcedureStarted{\"name\":\"n\"}\n"
                    " Runner.StepEntered{\"step\":\"s\"}\n"
                    "outer Runner.CommandCreated{\"class\":\"CompositeCommand\"}\n"
                    "outer Runner.CommandInitialized{}\n"
                    "outer Runner.PropertySet{\"name\":\"commandIDList\",\"value\":\"write\"}\n"
                    "write Runner.CommandCreated{\"class\":\"DataStoreWriter\"}\n"
                    "write Runner.CommandInitialized{}\n"
                    "write Runner.PropertySet{\"name\":\"dsLocation\",\"value\":\"a\"}\n"
                    "write Runner.PropertySet{\"name\":\"value\",\"value\":\"\u00E9\"}\n"
                    "write DataStore.SetValue{\"name\":\"a\",\"value\":\"\u00E9\"}\n"
                    "write Runner.CommandEnded{\"class\":\"DataStoreWriter\",\"caller\":\"outer\","
                    "\"phase\":\"execute\"}\n"
                    "outer CommandRunner.RunCommand{\"commandId\":\"write\"}\n"
                    "outer Runner.CommandEnded{\"class\":\"CompositeCommand\",\"caller\":null,"
                    "\"phase\":\"execute\"}\n"
                    " Runner.TransitionFollowed{\"from\":\"s\",\"to\":\"good\",\"key\":\"next\","
                    "\"transitionId\":null}\n"
                    " Runner.StepEntered{\"step\":\"good\"}\n"
                    " Runner.DataLeft{\"name\":\"a\",\"value\":\"\u00E9\"}\n"
                    " Runner.ProcedureEnded{\"verdict\":\"passed\",\"reason\":\"step 'good'\"}\n");
    const auto requests = std::count_if(records.begin(), records.end(), [](const Record& record) {
        return record.service == service::Context;
    });
    EXPECT_EQ(requests, 18); // nine of each command
}

TEST_F(RunnerTest, BuiltModule_CompositeThatNamesItself_FailsAtTheDepthLimit) {
    const LoadedModule module(test::BuiltModuleFile());
    EXPECT_EQ(Run("[commands.c]\nclass = 'CompositeCommand'\nproperties = { commandIDList = 'c' }\n"
                  "[steps.s]\nrun = ['c']\nnext = 'good'\n",
                  module),
              Verdict::Error);
    EXPECT_TRUE(module.CanUnload());
    const auto refused = std::count_if(records.begin(), records.end(), [](const Record& record) {
        return record.operation == operation::RunCommand &&
               record.result == HRESULT_FROM_WIN32(ERROR_STACK_OVERFLOW);
    });
    EXPECT_EQ(refused, 1);
}

TEST_F(RunnerTest, BuiltModule_RefusedTermination_LeadsToFailed) {
    const LoadedModule module(test::BuiltModuleFile());
    EXPECT_EQ(Run("[commands.t]\nclass = 'CommandTerminator'\nproperties = { commandID = 'watch' }\n"
                  "[steps.s]\nrun = ['t']\nnext = 'bad'\nfailed = 'good'\n",
                  module),
              Verdict::Passed);
    EXPECT_EQ(Only(operation::TerminateCommand).result, HRESULT_FROM_WIN32(ERROR_NOT_FOUND));
    EXPECT_EQ(Only(event::CommandEnded).result, E_FAIL);
}

} // namespace

} // namespace vant::host
