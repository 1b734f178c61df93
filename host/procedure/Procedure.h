#pragma once

#include "host/conditions/Condition.h"
#include "host/engine/model/EngineDescription.h"
#include "host/record/Value.h"
#include "host/services/Components.h"
#include "host/text/Diagnostic.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace vant::host {

/// A text and its position in the procedure file.
struct Located {
    std::string text;
    Position position;
};

struct Property {
    Located name;
    Located value;
};

struct Command {
    Position position; ///< Of the command's id.
    Located className;
    std::vector<Property> properties;   ///< In the file's order.
    std::vector<std::string> misread{}; ///< The names of further properties, whose values are mistakes.
};

/// How a procedure ended.
enum class Verdict { Passed, Failed, Aborted };

/// What a step waits for when its commands have been run.
enum class Wait {
    Not,
    Transition, ///< That a transition is chosen, or that no persistent command runs any more.
    End         ///< That the persistent commands which the step has started have ended.
};

/// A step runs commands and leads on to another step, or ends the procedure.
struct Step {
    Position position; ///< Of the step's id.
    std::vector<Located> run;
    std::optional<Located> next;
    std::optional<Located> failed;
    std::map<std::string, Located> on; ///< Transition id to step.
    Wait wait = Wait::Not;
    std::optional<Verdict> end;
};

/// A diagnostic procedure; docs/procedures.md describes it. Every name that refers to something exists.
struct Procedure {
    std::string name;
    Located start;
    std::map<std::string, Value> data;
    std::map<std::string, Command> commands;
    std::map<std::string, Step> steps;
    Components components;
    ConditionSets conditions;
    /// The file that holds the engine, relative to the procedure's folder; whoever reads it fills `engine`.
    std::optional<Located> engineFile;
    std::optional<EngineDescription> engine;
};

} // namespace vant::host
