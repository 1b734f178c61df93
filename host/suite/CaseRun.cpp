#include "host/suite/CaseRun.h"

#include "host/record/ProcedureDepth.h"
#include "host/record/ResultReport.h"
#include "host/record/Vocabulary.h"
#include "host/runner/ReadyOperator.h"
#include "host/runner/Runner.h"
#include "host/suite/CaseSetup.h"
#include "host/suite/FaultFinder.h"
#include "host/suite/FaultInjection.h"
#include "host/suite/RunCoverage.h"
#include "platform/Clock.h"

#include <exception>
#include <fmt/format.h>
#include <stdexcept>
#include <utility>

namespace vant::host {

namespace {

Json JsonOf(const std::map<std::string, GivenValue>& values) {
    Json json = Json::object();
    for (const auto& [name, given] : values)
        json[name] = ToJson(given.value);
    return json;
}

std::map<std::string, Value> ValuesIn(const Json& json) {
    std::map<std::string, Value> values;
    for (const auto& [name, value] : json.items())
        values.emplace(name, ToValue(value));
    return values;
}

Json JsonOf(const std::vector<ReadyAnswer>& answers) {
    Json list = Json::array();
    for (const ReadyAnswer& each : answers)
        list.push_back({{"step", each.step},
                        {"prompt", each.prompt},
                        {"answer", each.answer},
                        {"after", each.after},
                        {"repeat", each.repeats}});
    return list;
}

std::vector<ReadyAnswer> AnswersIn(const Json& list) {
    std::vector<ReadyAnswer> answers;
    for (const Json& each : list) {
        ReadyAnswer& ready = answers.emplace_back();
        ready.step = each.at("step");
        ready.prompt = each.at("prompt");
        ready.answer = each.at("answer");
        ready.after = each.at("after");
        ready.repeats = each.at("repeat");
    }
    return answers;
}

/// The numbers of the answers that no prompt has used, from 1.
Json UnusedOf(const ReadyOperator& answering) {
    Json numbers = Json::array();
    for (const std::size_t each : answering.UnusedOnes())
        numbers.push_back(each + 1);
    return numbers;
}

std::optional<std::int64_t> NumberOrNothing(const Json& json) {
    return json.is_null() ? std::nullopt : std::optional(json.get<std::int64_t>());
}

/// The steps that the outermost procedure enters.
class PathOfRun {
public:
    void operator()(const Record& record) {
        if (m_depths.Take(record) == 0 && record.service == service::Runner &&
            record.operation == event::StepEntered)
            m_path.push_back(record.Text(argument::step));
    }

    const Json& Path() const noexcept { return m_path; }

private:
    ProcedureDepth m_depths;
    Json m_path = Json::array();
};

/// What a run has ended with.
class EndOfRun {
public:
    void operator()(const Record& record) {
        if (record.service != service::Runner)
            return;
        if (record.operation == event::ProcedureEnded) // The outermost one is the last.
            m_result["verdict"] = record.Text(argument::verdict);
        else if (record.operation == event::ParameterLeft)
            m_result["left"].push_back(
                {{"id", record.Text(argument::id)}, {"value", ToJson(*record.Find(argument::value))}});
    }

    const Json& Result() const noexcept { return m_result; }

private:
    Json m_result = {{"verdict", nullptr}, {"left", Json::array()}};
};

CaseSetup SetupIn(const Json& request) {
    return {.data = ValuesIn(request.at("data")),
            .parameters = ValuesIn(request.at("parameters")),
            .seed = NumberOrNothing(request.at("seed")),
            .mayFail = request.at("mayFail")};
}

/// What must hold after every run. `mayHold`: the host itself may have kept something open.
void CheckAfterwards(const Runner& runner, const CommandFactory& commands, const Journal& journal,
                     bool mayHold) {
    if (const auto held = runner.StillHeld(); !held.empty() && !mayHold)
        throw std::runtime_error(
            fmt::format("commands still hold parts of the host after the run: {}", fmt::join(held, ", ")));
    if (!commands.CanUnload())
        throw std::runtime_error("the module still has live objects after the run");
    if (!journal.IsComplete())
        throw std::runtime_error("the journal of the run is not complete");
}

} // namespace

Json RequestOf(const TestCase& toRun, CaseWishes wishes) {
    Json mayFail = Json::array();
    for (const Located& each : toRun.expected.mayFail)
        mayFail.push_back(each.text);
    return {{"procedure", toRun.procedure.text},
            {"engine", toRun.engine ? toRun.engine->text : ""},
            {"data", JsonOf(toRun.data)},
            {"parameters", JsonOf(toRun.parameters)},
            {"answers", JsonOf(toRun.answers)},
            {"tags", toRun.tags},
            {"seed", toRun.seed ? Json(*toRun.seed) : Json()},
            {"maxTime", toRun.maxTime ? Json(*toRun.maxTime) : Json()},
            {"mayFail", std::move(mayFail)},
            {"coverage", wishes.coverage},
            {"faults", wishes.faults ? Json(*wishes.faults) : Json()},
            {"fault", nullptr}};
}

Json RequestOf(const TestCase& toRun, const Fault& fault) {
    Json request = RequestOf(toRun);
    request["fault"] = ToJson(fault);
    return request;
}

Json CaseRunner::Run(const Json& request) {
    try {
        return RunLoaded(request);
    } catch (const std::exception& failure) {
        return {{"failure", failure.what()}};
    }
}

Json CaseRunner::RunLoaded(const Json& request) {
    UseVirtualTime();
    const LoadedProcedure& loaded = m_procedures.Get(request.at("procedure"), request.at("engine"));
    if (loaded.files.HasErrors())
        throw std::runtime_error("a file of the procedure has changed, and now has mistakes");
    return request.at("fault").is_null() ? RunWithoutFault(request, loaded) : RunWithFault(request, loaded);
}

Json CaseRunner::RunWithoutFault(const Json& request, const LoadedProcedure& loaded) {
    Journal journal;
    ResultReport report;
    PathOfRun path;
    std::optional<RunCoverage> coverage;
    std::optional<FaultFinder> faults;
    journal.Observe([&report](const Record& record) { report(record); });
    journal.Observe([&path](const Record& record) { path(record); });
    if (request.at("coverage")) {
        coverage.emplace(loaded);
        journal.Observe([&coverage](const Record& record) { (*coverage)(record); });
    }
    if (!request.at("faults").is_null()) {
        faults.emplace(loaded);
        journal.Observe([&faults](const Record& record) { (*faults)(record); });
    }
    const Json unused = RunOnce(request, SetUp(loaded.procedure, SetupIn(request)), journal, nullptr);
    Json result = report.Result();
    for (const char* const detail : {"format", "steps", "finally", "omitted"})
        result.erase(detail);
    result["path"] = path.Path();
    result["unusedAnswers"] = unused;
    Json reply = {{"result", std::move(result)}};
    if (coverage)
        reply["coverage"] = coverage->Reached();
    if (faults) {
        reply["faults"] = Json::array();
        for (const Fault& each : faults->Faults(request["faults"]))
            reply["faults"].push_back(ToJson(each));
    }
    return reply;
}

Json CaseRunner::RunWithFault(const Json& request, const LoadedProcedure& loaded) {
    const Fault fault = FaultOf(request.at("fault"));
    Procedure procedure = SetUp(loaded.procedure, SetupIn(request));
    if (procedure.engine)
        Break(*procedure.engine, fault);
    Journal journal;
    EndOfRun end;
    journal.Observe([&end](const Record& record) { end(record); });
    FailingCall failing(fault);
    RunOnce(request, procedure, journal, &failing);
    Json result = end.Result();
    result["hasHappened"] = failing.HasHappened();
    return {{"result", std::move(result)}};
}

Json CaseRunner::RunOnce(const Json& request, const Procedure& procedure, Journal& journal,
                         FailingCall* failing) {
    ReadyOperator answering(AnswersIn(request.at("answers")));
    Runner runner(procedure, m_commands, journal,
                  {.maxTime = NumberOrNothing(request.at("maxTime")),
                   .tags = request.at("tags"),
                   .answering = &answering});
    if (failing)
        runner.Intercept([failing](const Record& call) { return (*failing)(call); });
    {
        const ClockParticipant participant;
        runner.Run();
    }
    CheckAfterwards(runner, m_commands, journal, failing && failing->LeavesSessionOpen());
    return UnusedOf(answering);
}

} // namespace vant::host
