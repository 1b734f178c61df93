#pragma once

#include "host/procedure/Answers.h"
#include "host/procedure/Procedure.h"
#include "host/record/Value.h"
#include "host/suite/FaultExcuse.h"
#include "host/text/Diagnostic.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace vant::host {

/// A value that a test file gives, and the position of its name.
struct GivenValue {
    Value value;
    Position position;
};

/// What a value must be.
struct ExpectedValue {
    Position position{};
    Limits limits{}; ///< None if any value will do.
};

/// What a measurement of a run must be.
struct ExpectedMeasurement {
    std::optional<std::string> verdict{}; ///< "passed", "failed", "missing" or "skipped".
    ExpectedValue value{};
};

/// What a run must lead to.
struct Expectation {
    Verdict verdict = Verdict::Passed;
    std::optional<Located> ending{}; ///< The step that was entered last.
    std::optional<std::vector<Located>> path{};
    std::map<std::string, ExpectedValue> data{};
    std::map<std::string, ExpectedMeasurement> measurements{};
    std::optional<std::map<std::string, ExpectedValue>> left{}; ///< These parameters and no others.
    std::optional<std::int64_t> longest{};                      ///< In milliseconds of the run's time.
    std::vector<Located> mayFail{}; ///< Commands and operations whose failures the verdict ignores.
};

/// One run of a procedure in a suite, and what it must lead to. File names in UTF-8.
struct TestCase {
    std::string name;
    std::string file; ///< The test file, or the procedure if it has none.
    Position position{};
    Located procedure{};             ///< With its folder.
    std::optional<Located> engine{}; ///< With its folder; in place of the procedure's own.
    std::map<std::string, GivenValue> data{};
    std::map<std::string, GivenValue> parameters{}; ///< Values of the engine's parameters at the beginning.
    std::vector<ReadyAnswer> answers{};             ///< Of the operator.
    std::map<std::string, std::string> tags{};
    std::optional<std::int64_t> seed{};
    std::optional<std::int64_t> maxTime{}; ///< In milliseconds.
    Expectation expected{};
    std::vector<FaultExcuse> mayPass{}; ///< Faults with which the run may pass.
    bool hasExpectation = false;        ///< The file has one, for this case or for all.
    bool isSwept = false;               ///< It is one of several that one table stands for.
};

} // namespace vant::host
