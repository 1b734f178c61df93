#pragma once

#include "host/record/Json.h"
#include "host/text/Diagnostic.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace vant::host {

/// Something that fails in a run on purpose.
struct Fault {
    enum class Kind {
        Call,   ///< One call of a command returns E_FAIL instead of being performed.
        Lost,   ///< From a time on a parameter cannot be read.
        Refused ///< No write of a parameter is accepted.
    };

    Kind kind = Kind::Call;
    std::string subject{};  ///< The call, such as "Parameter get_Value", or the parameter's id.
    std::string thread{};   ///< Of the call.
    std::string command{};  ///< Of the call.
    std::size_t number = 1; ///< Of the call, among those of the same command and thread with this name.
    std::int64_t from = 0;  ///< When the parameter is lost, in milliseconds.
    std::string
        step{}; ///< In which it begins; "finally" in the clean-up. Empty if it is there from the beginning.
    std::string place{}; ///< FILE:LINE of the command or the step.
    std::vector<std::string>
        unwritten{}; ///< Parameters whose values need not be put back, for the fault prevents it.
};

/// The kind of fault as a row of reports, such as "Parameter get_Value fails" or "parameter 101000 is lost".
std::string Describe(const Fault& fault);

/// The fault itself, such as "call 2 by 'read' in step 'check'" or "from step 'check' on".
std::string DescribeMoment(const Fault& fault);

/// For another process, which FaultOf reads.
Json ToJson(const Fault& fault);
Fault FaultOf(const Json& json);

} // namespace vant::host
