#pragma once

#include "tests/support/Commands.h"
#include "tests/support/HostThreads.h"
#include "tests/support/TestHost.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace vant::test {

using Calls = std::vector<std::string>;

/// A host and one persistent command of class `Class`, whose body the test runs on its own thread.
template <class Class>
class PersistentRun : public ::testing::Test {
protected:
    PersistentRun() { host.Threads().startsThreads = false; }
    ~PersistentRun() override { host.Threads().ReleaseCallbacks(); }

    /// Executes a new command, whose callback then waits. The calls up to here are forgotten.
    void Execute(Properties properties) {
        command = CreateCommand<Class>(host, properties);
        EXPECT_EQ(S_OK, command->Execute());
        host.ForgetCalls();
    }
    /// Runs the body of the executed command to its end.
    void RunBody() { EXPECT_EQ(E_FAIL, host.Threads().Run()); }
    void Run(Properties properties) {
        Execute(properties);
        RunBody();
    }
    HRESULT Stop() {
        CComPtr<IVantPersistentCommand> persistent;
        EXPECT_EQ(S_OK, command.QueryInterface(&persistent));
        return persistent->Stop();
    }
    /// Signals the command's stop event, of which nothing is noted.
    void StopSilently() {
        EXPECT_EQ(S_OK, Stop());
        host.ForgetCalls();
    }
    /// Stops the command at the call with this text.
    void StopAt(const std::string& call) {
        host.onCall = [this, call](const std::string& noted) {
            if (noted == call)
                Stop();
        };
    }
    void Store(const std::wstring& entry, std::wstring_view text) {
        host.dataStore[entry] = CComVariant(CComBSTR(text));
    }
    std::string Stored(const std::wstring& entry) {
        const auto found = host.dataStore.find(entry);
        return found == host.dataStore.end() ? "nothing" : Show(found->second.Get());
    }

    TestHost host;
    CComPtr<IVantCommand> command;
};

} // namespace vant::test
