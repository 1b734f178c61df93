#pragma once

#include "host/record/Activity.h"
#include "host/record/Json.h"
#include "host/record/ProcedureDepth.h"
#include "host/record/ReportText.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace vant::host {

/// Makes the result of one run from its records. docs/result.schema.json describes it, docs/procedures.md
/// explains it.
///
/// Of all that is listed in steps the first `mostEntries` are kept; "omitted" then counts the steps, and the
/// entries of kept steps, that came later. Without "omitted" nothing is missing.
class ResultReport {
public:
    /// Changes if a program that reads results must change.
    static constexpr int format = 1;
    static constexpr std::size_t mostEntries = 10000;

    ResultReport();
    void operator()(const Record& record);
    const Json& Result() const noexcept { return m_procedures.front().result; }

private:
    /// A procedure that has not ended. All but the first are run by a step of the one before.
    struct Running {
        Json result = Json::object();
        std::int64_t began = 0;
        bool stepIsKept = false;
        bool inFinally = false;
    };

    /// Whether one more entry is kept.
    bool Keeps();
    void Omit(std::size_t entries);
    void AppendTo(Json& list, Json entry);

    void Begin(const Record& record);
    void EnterStep(const Record& record);
    void EnterFinally(const Record& record);
    void EndProcedure(const Record& record);
    void TakeEvent(const Record& record);
    /// What describes the procedure as a whole; returns false for any other event.
    static bool TakeEventOfProcedure(const Record& record, Json& result);
    /// What happened in a step or in the clean-up.
    void TakeEventOfStep(const Record& record, Running& running);
    void AppendPrompt(const Record& closed, Json& place);
    /// What was shown to the technician, and what did not work.
    void TakeCall(const Record& record, Json& place);
    void TakeUnmet(const Record& evaluation, Json& place);

    /// Where the procedure is: in a step or in the clean-up; null if that is not kept.
    static Json* PlaceOf(Running& running);
    /// Completes the duration of the current step or clean-up.
    static void EndPlace(Running& running, std::int64_t time);
    /// Adds the command or the thread that the record ends.
    void AppendEnded(Json& list, Json entry, const Record& end, const Activity& activity);

    std::vector<Running> m_procedures;
    bool m_hasBegun = false;
    ProcedureDepth m_depths;
    std::size_t m_depth = 0; ///< The place in m_procedures of the one that the record belongs to.
    std::map<std::string, Record> m_prompts; ///< Those that are shown, by thread.
    Activities m_activities;
    ReportText m_text;
    std::size_t m_entries = 0;
    std::size_t m_omitted = 0;
};

} // namespace vant::host
