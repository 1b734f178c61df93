#pragma once

#include "host/record/Json.h"
#include "host/suite/CaseOutcome.h"
#include "host/suite/Fault.h"
#include "host/suite/TestCase.h"
#include "host/suite/WorkerPool.h"

#include <cstddef>
#include <string>
#include <vector>

namespace vant::host {

/// A run of a case with a fault.
struct FaultRun {
    std::size_t caseNumber = 0;
    Fault fault{};
};

/// What became of such a run.
struct FaultOutcome {
    bool isKnown = false;     ///< Otherwise the user ended the tests before.
    bool hasHappened = false; ///< Otherwise the run took another course, and met no fault.
    std::string verdict{};    ///< Empty if it has not ended.
    std::string problem{};    ///< Why the procedure does not deal with the fault; empty if it does.
    const FaultExcuse* excuse = nullptr; ///< By which it may pass.
};

/// The runs with faults for these cases, in their order: those for cases that have passed, and of each sweep
/// only for its first case, whose run has met the same calls.
std::vector<FaultRun> FaultRunsOf(const std::vector<TestCase>& cases,
                                  const std::vector<CaseOutcome>& outcomes);

/// Judges the reply to the request of a run with a fault. `tested` must outlive the outcome; `faultFree` is
/// the result of the run without one.
///
/// A run with a fault must end, must not end passed, and must leave each parameter as the run without a fault
/// leaves it, or with the value of the beginning.
FaultOutcome OutcomeOf(const Fault& fault, const TestCase& tested, const Json& faultFree,
                       const WorkerReply& reply);

/// The runs with one kind of fault.
struct FaultRow {
    std::string what{};
    std::size_t runs = 0;
    std::size_t passed = 0;
    std::size_t failed = 0;
    std::size_t error = 0;
    std::size_t excused = 0; ///< Of those that passed.
    std::size_t survived = 0;
};

/// Runs with the same problem, by faults at the same place.
struct Survivor {
    std::string place{};
    std::vector<std::string> what{}; ///< The kinds of faults, in the order of the runs.
    std::string problem{};
    std::size_t runs = 0;
    std::size_t caseNumber = 0; ///< Of the first one.
    std::string moment{};
};

/// What came of all runs with faults.
struct FaultResults {
    std::size_t runs = 0;
    std::size_t notMet = 0; ///< Runs that took another course.
    std::size_t notRun = 0;
    std::vector<FaultRow> rows{};       ///< By what fails.
    std::vector<Survivor> survivors{};  ///< In the order of the runs.
    std::vector<std::string> useless{}; ///< FILE:LINE of entries of `mayPass` that no run needs.
};

FaultResults ResultsOf(const std::vector<TestCase>& cases, const std::vector<FaultRun>& runs,
                       const std::vector<FaultOutcome>& outcomes);

/// For programs; docs/testing.md describes it.
Json FaultsToJson(const std::vector<TestCase>& cases, const FaultResults& results);

} // namespace vant::host
