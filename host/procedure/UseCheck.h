#pragma once

#include "host/procedure/CommandUse.h"
#include "host/procedure/DataUse.h"
#include "host/procedure/Procedure.h"
#include "host/text/Diagnostic.h"

#include <span>

namespace vant::host {

/// A warning for each thing of the procedure's own file that nothing uses. `hasOwnEngine` says whether it
/// runs on the engine in this file, if there is one.
void CheckUse(const Procedure& procedure, std::span<const CommandUse> commands, const DataUse& data,
              bool hasOwnEngine, Diagnostics& found);

} // namespace vant::host
