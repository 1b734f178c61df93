#pragma once

#include "host/procedure/Procedure.h"
#include "host/text/Diagnostic.h"

#include <array>
#include <string>
#include <vector>

namespace vant::host {

/// Something of a procedure that its tests can reach.
struct CoveragePoint {
    enum class Kind { Step, Transition, Command, Condition, Limit, CleanUp };

    Kind kind = Kind::Step;
    Position position;
    std::string what;           ///< Tells it from all others of the procedure, such as "step 'adjust'".
    bool isFailurePath = false; ///< It is reached only if something fails.
};

/// Everything of a procedure that tests can reach, not of those that it runs, in the order of kinds and
/// names.
std::vector<CoveragePoint> PointsOf(const Procedure& procedure);

// What the points are called.
std::string StepPoint(const std::string& step);
/// `key`: next, failed, timedOut or always.
std::string WayPoint(const std::string& step, const std::string& key);
std::string TransitionPoint(const std::string& step, const std::string& transition);
/// Of a transition under `on` of the procedure.
std::string CommonTransitionPoint(const std::string& transition);
std::string ButtonPoint(const std::string& step, const std::string& button);
std::string RetryPoint(const std::string& step);
std::string CommandPoint(const std::string& command);
std::string ConditionPoint(const std::string& set, const Condition& condition, bool holds);
/// `limit`: one of those that LimitsOf returns.
std::string LimitPoint(const std::string& measurement, const Limits& limit, bool isKept);
/// The clean-up of a run that does not pass.
std::string CleanUpPoint();

/// Each of several limits by itself.
std::vector<Limits> LimitsOf(const Limits& limits);

} // namespace vant::host
