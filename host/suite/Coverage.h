#pragma once

#include "host/record/Json.h"
#include "host/suite/CoveragePoints.h"
#include "host/suite/TestCase.h"

#include <array>
#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace vant::host {

/// How many of several points were reached.
struct CoverageCount {
    std::size_t reached = 0;
    std::size_t of = 0;

    /// Rounded down, so that 100 means all; 100 if there are none.
    std::size_t Percent() const noexcept { return of == 0 ? 100 : reached * 100 / of; }
    CoverageCount& operator+=(const CoverageCount& other) noexcept;
};

/// The counts that reports show, by their columns.
inline constexpr std::array coverageColumns = {"steps",      "transitions", "commands",
                                               "conditions", "limits",      "failure paths"};

/// What tests have reached of one procedure.
struct CoveredProcedure {
    std::string file;
    std::array<CoverageCount, coverageColumns.size()> columns{};
    CoverageCount all{}; ///< Each point once, also if it is in two columns.
    std::vector<CoveragePoint> notReached{};
};

/// What all runs of a suite together have reached of the procedures.
class Coverage {
public:
    /// Of the procedures of these cases, and those that they run. Nothing is reached.
    explicit Coverage(const std::vector<TestCase>& cases);

    /// Adds what a run has reached, as RunCoverage returns it.
    void Add(const Json& reached);

    /// By the names of the files.
    std::vector<CoveredProcedure> Procedures() const;

private:
    std::map<std::string, std::vector<CoveragePoint>> m_points; ///< By file.
    std::map<std::string, std::set<std::string>> m_reached;
};

/// The sum of all procedures.
CoverageCount TotalOf(const std::vector<CoveredProcedure>& procedures);

/// For programs; docs/testing.md describes it.
Json CoverageToJson(const std::vector<CoveredProcedure>& procedures);

/// The place of a point in its file, or in the one that the file includes: "FILE:LINE".
std::string PlaceOf(const std::string& file, const Position& position);

} // namespace vant::host
