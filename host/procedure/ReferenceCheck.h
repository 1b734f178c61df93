#pragma once

#include "host/procedure/CommandUse.h"
#include "host/procedure/DataUse.h"
#include "host/procedure/Procedure.h"
#include "host/text/Diagnostic.h"

#include <map>
#include <span>

namespace vant::host {

/// The engine that a procedure is checked against.
struct EngineAtHand {
    const EngineDescription* engine = nullptr; ///< Null: there is none.
    /// It takes the place of the procedure's own. Commands may ask in vain then: it is to be found out what
    /// they do on an engine that lacks something.
    bool isAnother = false;
    /// Otherwise it has mistakes or could not be read, and nothing is checked against it.
    bool isKnown = true;
    /// Whether it is an error that a condition on a parameter has none.
    bool isNeeded = true;
};

/// What becomes of the entries of the procedures that a procedure runs, as far as these have no mistakes.
using CalledData = std::map<const Procedure*, const DataUse*>;

/// What the reading of a procedure has left to be relied on.
struct WholeParts {
    bool commands = true; ///< All commands have been read without mistakes.
    bool everything = true;
};

/// Looks up all that commands, conditions, measurements and calls of procedures name: an error for each thing
/// that does not exist.
void CheckReferences(const Procedure& procedure, std::span<const CommandUse> commands, const DataUse& data,
                     const CalledData& called, const EngineAtHand& engine, const WholeParts& whole,
                     Diagnostics& found);

} // namespace vant::host
