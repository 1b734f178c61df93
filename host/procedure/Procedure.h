#pragma once

#include "host/conditions/Condition.h"
#include "host/conditions/Limits.h"
#include "host/engine/model/EngineDescription.h"
#include "host/record/Value.h"
#include "host/services/Components.h"
#include "host/text/Diagnostic.h"

#include <cstdint>
#include <map>
#include <memory>
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
    std::string description{};
    std::vector<Property> properties{}; ///< In the file's order.
    std::vector<std::string> misread{}; ///< The names of further properties, whose values are mistakes.
    bool hasAllProperties = true;       ///< Otherwise it has some that could not be read at all.
};

/// How a procedure ended.
enum class Verdict {
    Passed,
    Failed,
    Error,  ///< The bench or a command could not do its work, so nothing is known.
    Aborted ///< The user ended it.
};

/// What a step waits for when its commands have been run.
enum class Wait {
    Not,
    Transition, ///< That a transition is chosen, or that no persistent command runs any more.
    End         ///< That the persistent commands which the step has started have ended.
};

/// How often a step is tried again, and after what.
struct Retry {
    std::int64_t times = 0;    ///< After the first try.
    std::int64_t after = 0;    ///< The wait before each, in milliseconds.
    std::vector<Located> on{}; ///< Transitions that are not followed while tries are left.
};

struct Procedure;

/// Another procedure that a step runs, with data and threads of its own, on the same engine.
struct ProcedureCall {
    Located file; ///< Relative to the folder of the calling procedure. The loader sets `procedure` from it.
    std::shared_ptr<const Procedure> procedure{};
    std::map<std::string, Value> given{}; ///< Entries of the called procedure and their values.
    std::map<std::string, Located>
        passed{}; ///< Entries of the called procedure that receive entries of the caller.
    std::map<std::string, Located>
        results{}; ///< Entries of the caller that receive entries of the called procedure.
};

/// What a step asks the operator when its commands have been run.
struct Question {
    Located text;                   ///< References to entries and parameters are replaced by their texts.
    std::vector<Located> buttons{}; ///< Transitions, one of which is the answer.
    std::optional<Located> data{};  ///< Or the entry that receives what is entered.
    bool isNumber = false;          ///< What is entered.
    std::string units{};
    Limits limits{};
    std::optional<std::int64_t> timeout{}; ///< In milliseconds.
    std::optional<Value> standard{};       ///< The answer if the operator enters none.
};

/// A step runs commands and leads on to another step, or ends the procedure. Times are in milliseconds.
struct Step {
    Position position; ///< Of the step's id.
    std::string description{};
    std::optional<ProcedureCall> procedure{}; ///< Run before the commands.
    std::vector<Located> run{};
    std::vector<Located> mayFail{}; ///< Commands and operations whose failures the verdict ignores.
    std::optional<Question> ask{};
    std::optional<std::int64_t> delay{};
    std::optional<Located> until{}; ///< The condition set that the step waits for.
    Wait wait = Wait::Not;
    std::optional<std::int64_t> timeout{};
    Retry retry{};
    std::optional<Located> next{};
    std::optional<Located> failed{};
    std::optional<Located> timedOut{};
    std::optional<Located> always{};     ///< Whatever has happened; excludes the three above and `on`.
    std::map<std::string, Located> on{}; ///< Transition id to step.
    std::optional<Verdict> end{};
};

/// A data-store entry whose last value counts as a measurement.
struct Measurement {
    Position position; ///< Of the measurement's name.
    Located data;
    std::string units{};
    std::string description{};
    Limits limits{};
    bool optional = false; ///< It need not be made.
};

/// The limits of a run without limits of its own.
inline constexpr std::int64_t defaultMaxTime = 7'200'000; ///< Two hours.
inline constexpr std::int64_t defaultMaxSteps = 10'000;
inline constexpr std::int64_t defaultFinallyTime = 30'000;

/// A diagnostic procedure; docs/procedures.md describes it. Every name that refers to something exists. Times
/// are in milliseconds.
struct Procedure {
    std::string name;
    std::string description;
    std::string revision;
    std::string author;
    std::int64_t maxTime = defaultMaxTime;
    std::int64_t maxSteps = defaultMaxSteps;
    Located start;
    std::vector<Located> finally; ///< Commands that run however the procedure ends.
    std::int64_t finallyTime = defaultFinallyTime;
    std::map<std::string, Value> data;
    std::map<std::string, Position> dataPositions; ///< Of the names in `data`.
    std::map<std::string, Command> commands;
    std::map<std::string, Step> steps;
    std::map<std::string, Located>
        on; ///< Transition id to step, for the steps that do not name the transition.
    std::map<std::string, Measurement> measurements;
    Components components;
    std::map<std::string, Position> componentPositions; ///< Of the names in `components`.
    ConditionSets conditions;
    /// The file that holds the engine, relative to the procedure's folder. The loader sets `engine` from it.
    std::optional<Located> engineFile;
    std::optional<EngineDescription> engine;
    std::map<std::string, Position> parameterPositions; ///< Of the parameters of an engine in this file.
};

} // namespace vant::host
