#pragma once

#include "host/procedure/Procedure.h"
#include "host/procedure/Toml.h"
#include "host/suite/Fault.h"

#include <string>
#include <vector>

namespace vant::host {

/// Faults with which a run may pass, and why. Empty texts stand for any.
struct FaultExcuse {
    Position position{};
    Located call{}; ///< Such as "Parameter get_Value".
    Located command{};
    Located lost{};    ///< The parameter that cannot be read.
    Located refused{}; ///< The parameter that cannot be written.
    Located step{};    ///< In which the fault begins.
    std::string why{};
};

/// Whether a fault is one of those.
bool Fits(const FaultExcuse& excuse, const Fault& fault);

/// Reads the table `faults` of a test file. Every mistake goes into `found`.
std::vector<FaultExcuse> ReadFaultExcuses(const toml::node& node, Diagnostics& found);

} // namespace vant::host
