#pragma once

#include "host/procedure/Toml.h"
#include "host/suite/TestCase.h"

namespace vant::host {

/// Reads the table `expected` of a test file over what `expected` has already. Entries of `data` and
/// `measurements` are added to those that it has, or replace them; everything else is replaced as a whole.
/// Every mistake goes into `found`.
void ReadExpectation(const toml::node& node, Expectation& expected, Diagnostics& found);

} // namespace vant::host
