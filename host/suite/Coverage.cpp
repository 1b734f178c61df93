#include "host/suite/Coverage.h"

#include "host/suite/ProcedureShelf.h"
#include "host/suite/RunCoverage.h"

#include <utility>

namespace vant::host {

namespace {

constexpr std::size_t failurePaths = coverageColumns.size() - 1;

/// The column of a kind of points; that of the failure paths for those that are nothing else.
std::size_t ColumnOf(CoveragePoint::Kind kind) noexcept {
    return static_cast<std::size_t>(kind);
}

static_assert(static_cast<std::size_t>(CoveragePoint::Kind::CleanUp) == failurePaths);

Json CountToJson(const CoverageCount& count) {
    return {{"reached", count.reached}, {"of", count.of}};
}

Json PointToJson(const std::string& file, const CoveragePoint& point) {
    return {{"file", point.position.file ? *point.position.file : file},
            {"line", point.position.line},
            {"column", point.position.column},
            {"what", point.what}};
}

} // namespace

CoverageCount& CoverageCount::operator+=(const CoverageCount& other) noexcept {
    reached += other.reached;
    of += other.of;
    return *this;
}

Coverage::Coverage(const std::vector<TestCase>& cases) {
    ProcedureShelf shelf;
    for (const TestCase& each : cases) {
        const LoadedProcedure& loaded = shelf.Get(each.procedure.text, each.engine ? each.engine->text : "");
        m_points.try_emplace(NormalName(loaded.files.Main().name), PointsOf(loaded.procedure));
        for (const CalledProcedure& called : loaded.called)
            m_points.try_emplace(NormalName(called.file->name), PointsOf(*called.procedure));
    }
}

void Coverage::Add(const Json& reached) {
    for (const auto& [file, points] : reached.items()) {
        for (const Json& each : points)
            m_reached[file].insert(each.get<std::string>());
    }
}

std::vector<CoveredProcedure> Coverage::Procedures() const {
    std::vector<CoveredProcedure> procedures;
    for (const auto& [file, points] : m_points) {
        CoveredProcedure& covered = procedures.emplace_back(CoveredProcedure{.file = file});
        const auto found = m_reached.find(file);
        for (const CoveragePoint& each : points) {
            const bool isReached = found != m_reached.end() && found->second.contains(each.what);
            const CoverageCount count{isReached ? 1U : 0U, 1};
            covered.all += count;
            covered.columns[ColumnOf(each.kind)] += count;
            if (each.isFailurePath && ColumnOf(each.kind) != failurePaths)
                covered.columns[failurePaths] += count;
            if (!isReached)
                covered.notReached.push_back(each);
        }
    }
    return procedures;
}

CoverageCount TotalOf(const std::vector<CoveredProcedure>& procedures) {
    CoverageCount total;
    for (const CoveredProcedure& each : procedures)
        total += each.all;
    return total;
}

Json CoverageToJson(const std::vector<CoveredProcedure>& procedures) {
    Json list = Json::array();
    for (const CoveredProcedure& each : procedures) {
        Json json = {{"file", each.file}, {"all", CountToJson(each.all)}};
        for (std::size_t i = 0; i < coverageColumns.size(); ++i)
            json[i == failurePaths ? "failurePaths" : coverageColumns[i]] = CountToJson(each.columns[i]);
        json["notReached"] = Json::array();
        for (const CoveragePoint& point : each.notReached)
            json["notReached"].push_back(PointToJson(each.file, point));
        list.push_back(std::move(json));
    }
    return {{"all", CountToJson(TotalOf(procedures))}, {"procedures", std::move(list)}};
}

std::string PlaceOf(const std::string& file, const Position& position) {
    return (position.file ? *position.file : file) + ':' + std::to_string(position.line);
}

} // namespace vant::host
