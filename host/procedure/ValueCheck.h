#pragma once

#include "host/procedure/CommandUse.h"
#include "host/procedure/DataUse.h"
#include "host/procedure/Procedure.h"
#include "host/text/Diagnostic.h"

#include <span>

namespace vant::host {

/// Checks the words and numbers in the properties of commands by their kinds, and those in entries of the
/// data that commands read and nothing writes.
void CheckValues(const Procedure& procedure, std::span<const CommandUse> commands, const DataUse& data,
                 Diagnostics& found);

} // namespace vant::host
