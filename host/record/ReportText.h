#pragma once

#include "host/record/Activity.h"
#include "host/record/Journal.h"

#include <map>
#include <string>

namespace vant::host {

/// A value for a person: a text as it is, a whole number without decimals, "empty" for none. Printable.
std::string Readable(const Value& value);

/// How records are put into words. Texts are printable and fit in a line.
class ReportText {
public:
    /// Remembers what the parameters are called.
    void Take(const Record& record);

    std::string NameOfParameter(const std::string& id) const;
    /// Empty if the parameter has none.
    std::string UnitsOfParameter(const std::string& id) const;

    /// Such as "drop = 120", "Engine speed = 800 1/min" or "Throttle set to 35 %". A long value is cut.
    std::string Describe(const UsedValue& used) const;
    /// A call with its arguments and its result in words.
    std::string DescribeCall(const Record& call) const;
    /// The condition for which a set does not hold, such as "Engine speed 1391 1/min, required atLeast 1500";
    /// empty if the set holds.
    std::string DescribeUnmet(const Record& evaluation) const;

private:
    struct Parameter {
        std::string name;
        std::string units;
    };

    std::string WithUnits(const std::string& id, std::string text) const;

    std::map<std::string, Parameter> m_parameters;
};

} // namespace vant::host
