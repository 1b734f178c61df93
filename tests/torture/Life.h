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
    std::size_t number;     ///< among the scenario's calls, counted from 0
    Calls then;             ///< the calls that follow its failure
    HRESULT execute = S_OK; ///< what Execute then answers
};

/// A command with all that it needs for one execution.
struct Scenario {
    const char* name;
    const CLSID* classId;
    std::vector<std::pair<std::wstring, std::wstring>> properties;
    Calls calls;           ///< what Execute asks of the host, as TestHost notes it
    HRESULT failedExecute; ///< what Execute answers where something ends it early
    std::vector<IgnoredCall> ignored = {};
    /// All calls, where a conversion without memory gives no text, which ends nothing.
    std::optional<Calls> withoutText = std::nullopt;

    friend std::ostream& operator<<(std::ostream& out, const Scenario& scenario);
};

/// One scenario for every way through every built command.
const std::vector<Scenario>& Scenarios();

/// Runs the scenario's whole life in a freshly loaded module: create, Initialize, SetProperty, get_IsValid,
/// put_Label and get_Label, Execute, Release. `fault` strikes at its opportunity `number`, not at all for 0.
/// The operation that it strikes must answer as documented, leave nothing half done, and succeed when it is
/// tried again; all others must succeed; nothing may be left in the end. Returns the number of opportunities.
std::size_t Live(const Scenario& scenario, Fault& fault, std::size_t number);

/// Lives once without the fault, then once for each of its opportunities.
void LiveThroughEach(const Scenario& scenario, Fault& fault);

} // namespace vant::test
