#pragma once

#include "host/procedure/Procedure.h"
#include "host/procedure/ReferenceCheck.h"
#include "host/text/Diagnostic.h"

#include <span>

namespace vant::host {

/// A procedure that has been read, with the messages about its file.
struct ProcedureToCheck {
    const Procedure* procedure;
    Diagnostics* found;
};

/// Checks a procedure, the first one, and all that it runs, directly or not: everything that can be known
/// without running and has not been found in reading. All work on the same engine. `hasOwnEngine` says
/// whether it is one that the first procedure itself describes.
void CheckProcedures(std::span<const ProcedureToCheck> procedures, const EngineAtHand& engine,
                     bool hasOwnEngine);

} // namespace vant::host
