#pragma once

#include "tests/torture/Fault.h"

#include <cstddef>
#include <iosfwd>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vant::test {

using Calls = std::vector<std::string>;

/// A call whose failure does not end the execution.
struct IgnoredCall {
    std::size_t number;      ///< among the scenario's calls, counted from 0
    Calls then;              ///< the calls that follow its failure
    HRESULT execute = S_OK;  ///< what Execute then returns
    bool alsoThrown = false; ///< whether the same follows if the call throws
};

/// What an operation asks of the host, and how it can end.
struct Work {
    Calls calls;    ///< as TestHost notes them
    HRESULT failed; ///< what it returns if something ends it early
    std::vector<IgnoredCall> ignored = {};
    /// All calls if a conversion without memory yields no text, which ends nothing.
    std::optional<Calls> withoutText = std::nullopt;
    /// The calls that follow if something ends it early.
    Calls afterFailure = {};
    HRESULT done = S_OK; ///< what it returns otherwise
};

/// What a persistent command does when its callback is called.
struct Body {
    Work work;
    /// The command is stopped before its thread begins, so that it stays with one round.
    bool stoppedBefore = false;
};

/// A command with all that it needs for one execution.
struct Scenario {
    const char* name;
    const CLSID* classId;
    std::vector<std::pair<std::wstring, std::wstring>> properties;
    Calls calls;           ///< what Execute asks of the host, as TestHost notes it
    HRESULT failedExecute; ///< what Execute returns if something ends it early
    std::vector<IgnoredCall> ignored = {};
    /// All calls if a conversion without memory yields no text, which ends nothing.
    std::optional<Calls> withoutText = std::nullopt;
    /// The calls that follow if something ends Execute early.
    Calls afterFailure = {};
    /// Of a persistent command whose callback is to be called.
    std::optional<Body> body = std::nullopt;

    Work Execution() const { return {calls, failedExecute, ignored, withoutText, afterFailure}; }

    friend std::ostream& operator<<(std::ostream& out, const Scenario& scenario);
};

/// What the execution of every persistent command asks of the host.
const Calls& RegistrationCalls();

/// One scenario for every way through every built command that does not wait. Of the persistent commands, it
/// is their execution alone.
const std::vector<Scenario>& Scenarios();

/// The ways that wait, which are to be lived through in virtual time: of the adjusters, and of the persistent
/// commands' bodies. Portable platform only.
const std::vector<Scenario>& WaitingScenarios();

/// Runs the scenario's whole life in a freshly loaded module: create, Initialize, SetProperty, get_IsValid,
/// put_Label and get_Label, Execute, of a persistent command its callback and Stop, Release. `fault` strikes
/// at its opportunity `number`, not at all for 0. The operation it strikes must return as documented,
/// leave nothing half done, and succeed when it is tried again; all others must succeed; nothing may be left
/// in the end. Returns the number of opportunities.
std::size_t Live(const Scenario& scenario, Fault& fault, std::size_t number);

/// Lives once without the fault, then once for each of its opportunities.
void LiveThroughEach(const Scenario& scenario, Fault& fault);

} // namespace vant::test
