#include "host/suite/CoveragePoints.h"

#include "host/text/Printable.h"

#include <fmt/format.h>
#include <set>
#include <utility>

namespace vant::host {

namespace {

using Kind = CoveragePoint::Kind;

/// Points of one procedure, each of them once.
class PointList {
public:
    void Add(Kind kind, const Position& position, std::string what, bool isFailurePath = false) {
        if (m_known.insert(what).second)
            m_points.push_back({kind, position, std::move(what), isFailurePath});
    }

    void AddTransitions(const std::string& id, const Step& step) {
        const auto add = [&](const char* key, const std::optional<Located>& target, bool isFailurePath) {
            if (target)
                Add(Kind::Transition, target->position, WayPoint(id, key), isFailurePath);
        };
        add("next", step.next, false);
        add("failed", step.failed, true);
        add("timedOut", step.timedOut, true);
        add("always", step.always, false);
        for (const auto& [transition, target] : step.on)
            Add(Kind::Transition, target.position, TransitionPoint(id, transition));
        for (const Located& button : step.ask ? step.ask->buttons : std::vector<Located>())
            Add(Kind::Transition, button.position, ButtonPoint(id, button.text));
        if (step.retry.times > 0)
            Add(Kind::Transition, step.position, RetryPoint(id), true);
    }

    std::vector<CoveragePoint> Take() { return std::move(m_points); }

private:
    std::vector<CoveragePoint> m_points;
    std::set<std::string> m_known;
};

} // namespace

std::string StepPoint(const std::string& step) {
    return "step " + Quoted(step);
}

std::string WayPoint(const std::string& step, const std::string& key) {
    return fmt::format("{} of step {}", Quoted(key), Quoted(step));
}

std::string TransitionPoint(const std::string& step, const std::string& transition) {
    return fmt::format("transition {} of step {}", Quoted(transition), Quoted(step));
}

std::string CommonTransitionPoint(const std::string& transition) {
    return fmt::format("transition {} of the procedure", Quoted(transition));
}

std::string ButtonPoint(const std::string& step, const std::string& button) {
    return fmt::format("button {} of step {}", Quoted(button), Quoted(step));
}

std::string RetryPoint(const std::string& step) {
    return "another try of step " + Quoted(step);
}

std::string CommandPoint(const std::string& command) {
    return "command " + Quoted(command);
}

std::string ConditionPoint(const std::string& set, const Condition& condition, bool holds) {
    return fmt::format("{} in conditions {}: {}", Printable(Describe(condition)), Quoted(set), holds);
}

std::string LimitPoint(const std::string& measurement, const Limits& limit, bool isKept) {
    return fmt::format("{} of measurement {}: {}", Printable(Describe(limit)), Quoted(measurement),
                       isKept ? "kept" : "violated");
}

std::string CleanUpPoint() {
    return "the clean-up of a run that does not pass";
}

std::vector<Limits> LimitsOf(const Limits& limits) {
    std::vector<Limits> list;
    for (const Limit& each : limits.comparisons)
        list.push_back({.comparisons = {each}});
    if (!limits.oneOf.empty())
        list.push_back({.oneOf = limits.oneOf});
    if (limits.like)
        list.push_back({.like = limits.like});
    return list;
}

std::vector<CoveragePoint> PointsOf(const Procedure& procedure) {
    PointList points;
    for (const auto& [id, step] : procedure.steps)
        points.Add(Kind::Step, step.position, StepPoint(id));
    for (const auto& [id, step] : procedure.steps)
        points.AddTransitions(id, step);
    for (const auto& [transition, target] : procedure.on)
        points.Add(Kind::Transition, target.position, CommonTransitionPoint(transition));
    for (const auto& [id, command] : procedure.commands)
        points.Add(Kind::Command, command.position, CommandPoint(id));
    for (const auto& [name, set] : procedure.conditions) {
        for (const Condition& each : set.list) {
            for (const bool holds : {true, false})
                points.Add(Kind::Condition, each.position, ConditionPoint(name, each, holds));
        }
    }
    for (const auto& [name, measurement] : procedure.measurements) {
        for (const Limits& each : LimitsOf(measurement.limits)) {
            for (const bool isKept : {true, false})
                points.Add(Kind::Limit, measurement.position, LimitPoint(name, each, isKept));
        }
    }
    if (!procedure.finally.empty())
        points.Add(Kind::CleanUp, procedure.finally.front().position, CleanUpPoint(), true);
    return points.Take();
}

} // namespace vant::host
