// Procedure files of any content: they are read or refused with messages.

#include "fuzz/Reading.h"
#include "host/procedure/ProcedureCheck.h"
#include "host/procedure/ProcedureReader.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    vant::host::Diagnostics found;
    const auto procedure =
        vant::host::ReadProcedure(std::string_view(reinterpret_cast<const char*>(data), size), found);
    const vant::host::ProcedureToCheck toCheck[] = {{&procedure, &found}};
    vant::host::CheckProcedures(toCheck, {.engine = procedure.engine ? &*procedure.engine : nullptr}, true);
    vant::fuzz::CheckMessages(found);
    // The runner relies on this.
    if (!found.HasErrors() && !procedure.steps.contains(procedure.start.text))
        std::abort();
    return 0;
}
