#include "host/record/ResultReport.h"

#include "host/record/Codes.h"
#include "host/record/Vocabulary.h"

#include <algorithm>
#include <initializer_list>
#include <string_view>
#include <utility>

namespace vant::host {

namespace {

/// An argument of a record; null if it is missing.
Json JsonOf(const Record& record, std::string_view name) {
    const Value* const value = record.Find(name);
    return value ? ToJson(*value) : Json();
}

/// These arguments of a record, under their names; null for those that are missing.
Json ObjectOf(const Record& record, std::initializer_list<const char*> names) {
    Json object = Json::object();
    for (const char* const name : names)
        object[name] = JsonOf(record, name);
    return object;
}

/// Null in place of empty texts under these names.
Json WithoutEmpty(Json object, std::initializer_list<const char*> names) {
    for (const char* const name : names) {
        if (object[name] == "")
            object[name] = nullptr;
    }
    return object;
}

Json MeaningAsJson(HRESULT code) {
    const char* const meaning = MeaningOf(code);
    return meaning ? Json(meaning) : Json();
}

/// What a step and the clean-up have in common.
void AddWork(Json& place, std::int64_t time) {
    place["start"] = time;
    place["duration"] = nullptr;
    for (const char* const list : {"commands", "threads", "unmet", "missing", "instructions", "prompts"})
        place[list] = Json::array();
    place["display"] = Json::object();
}

const char* NameOf(UsedValue::Kind kind) {
    switch (kind) {
    case UsedValue::Kind::DataWritten:
        return "written";
    case UsedValue::Kind::ParameterRead:
        return "read";
    default:
        return "parameter written";
    }
}

Json EntryOf(const UsedValue& used) {
    return {{"kind", NameOf(used.kind)}, {"name", used.name}, {"value", ToJson(used.value)}};
}

Json EntryOf(const Activity::FailedCall& failed) {
    const Json call = ToJson(failed.call);
    return {{"service", call["service"]},
            {"operation", call["operation"]},
            {"arguments", call["arguments"]},
            {"result", call["result"]},
            {"meaning", MeaningAsJson(failed.call.result.value_or(S_OK))},
            {"time", failed.call.time},
            {"times", failed.times}};
}

} // namespace

ResultReport::ResultReport() {
    m_procedures.emplace_back().result = {{"format", format}};
}

void ResultReport::operator()(const Record& record) {
    m_text.Take(record);
    m_activities.Take(record);
    m_depth = m_depths.Take(record);
    if (record.service == service::Runner)
        TakeEvent(record);
    else if (Json* const place = PlaceOf(m_procedures[m_depth]); place && record.result)
        TakeCall(record, *place);
}

bool ResultReport::Keeps() {
    if (m_entries < mostEntries) {
        ++m_entries;
        return true;
    }
    Omit(1);
    return false;
}

void ResultReport::Omit(std::size_t entries) {
    m_omitted += entries;
    if (m_omitted != 0)
        m_procedures.front().result["omitted"] = m_omitted;
}

void ResultReport::AppendTo(Json& list, Json entry) {
    if (Keeps())
        list.push_back(std::move(entry));
}

Json* ResultReport::PlaceOf(Running& running) {
    if (running.inFinally)
        return &running.result["finally"];
    return running.stepIsKept ? &running.result["steps"].back() : nullptr;
}

void ResultReport::EndPlace(Running& running, std::int64_t time) {
    Json* const place = PlaceOf(running);
    if (place && (*place)["duration"].is_null())
        (*place)["duration"] = time - (*place)["start"].get<std::int64_t>();
}

void ResultReport::TakeCall(const Record& record, Json& place) {
    if (record.service == service::ConditionSet)
        TakeUnmet(record, place);
    if (FAILED(*record.result))
        return; // The activity of the command has it.
    if (record.operation == operation::ShowInstruction)
        AppendTo(place["instructions"], record.Text(argument::text));
    else if (record.operation == operation::SetComponentProperty)
        place["display"][record.Text(argument::componentId)][record.Text(argument::name)] =
            record.Text(argument::value);
}

void ResultReport::TakeUnmet(const Record& evaluation, Json& place) {
    if (!evaluation.Find(argument::failed))
        return;
    const Json conditions = JsonOf(evaluation, argument::name);
    const Json condition = JsonOf(evaluation, argument::failed);
    Json& list = place["unmet"];
    auto entry = std::find_if(list.begin(), list.end(), [&](const Json& each) {
        return each["conditions"] == conditions && each["condition"] == condition;
    });
    if (entry == list.end()) {
        if (!Keeps())
            return;
        list.push_back({{"conditions", conditions}, {"condition", condition}});
        entry = list.end() - 1;
    }
    // The last value counts.
    (*entry)["value"] = JsonOf(evaluation, argument::value);
    (*entry)["description"] = m_text.DescribeUnmet(evaluation);
    (*entry)["time"] = evaluation.time;
}

void ResultReport::TakeEvent(const Record& record) {
    if (record.operation == event::ProcedureStarted)
        Begin(record);
    else if (record.operation == event::ProcedureEnded)
        EndProcedure(record);
    else if (record.operation == event::StepEntered)
        EnterStep(record);
    else if (record.operation == event::FinallyStarted)
        EnterFinally(record);
    else if (Running& running = m_procedures[m_depth]; !TakeEventOfProcedure(record, running.result))
        TakeEventOfStep(record, running);
}

void ResultReport::EnterFinally(const Record& record) {
    Running& running = m_procedures.back();
    EndPlace(running, record.time);
    running.inFinally = true;
    AddWork(running.result["finally"] = Json::object(), record.time);
}

void ResultReport::Begin(const Record& record) {
    if (m_hasBegun)
        m_procedures.emplace_back();
    m_hasBegun = true;
    m_procedures.back().began = record.time;
    Json& result = m_procedures.back().result;
    result["procedure"] =
        ObjectOf(record, {argument::name, argument::description, argument::revision, argument::author});
    result["tags"] = Json::object();
    result["verdict"] = nullptr;
    result["reason"] = nullptr;
    result["start"] = record.time;
    result["duration"] = nullptr;
    result["steps"] = Json::array();
    result["finally"] = nullptr;
    result["measurements"] = Json::array();
    result["data"] = Json::object();
    result["parameters"] = Json::object();
    result["left"] = Json::array();
}

void ResultReport::EnterStep(const Record& record) {
    Running& running = m_procedures.back();
    EndPlace(running, record.time);
    running.stepIsKept = Keeps();
    if (!running.stepIsKept)
        return;
    Json step;
    step["step"] = JsonOf(record, argument::step);
    step["description"] = JsonOf(record, argument::description);
    AddWork(step, record.time);
    step["waits"] = Json::array();
    step["retries"] = Json::array();
    step["timedOut"] = nullptr;
    step["procedure"] = nullptr;
    step["next"] = nullptr;
    running.result["steps"].push_back(std::move(step));
}

void ResultReport::TakeEventOfStep(const Record& record, Running& running) {
    const bool isEnd = record.operation == event::CommandEnded || record.operation == event::ThreadEnded;
    const Activity activity = isEnd ? m_activities.End(record) : Activity();
    if (record.operation == event::PromptShown)
        m_prompts.insert_or_assign(record.thread, record);
    Json* const found = PlaceOf(running);
    if (!found)
        return;
    Json& place = *found;
    if (record.operation == event::CommandEnded) {
        Json command = {{"command", record.command}};
        command.update(ObjectOf(record, {argument::className, argument::caller, argument::phase}));
        AppendEnded(place["commands"], std::move(command), record, activity);
    } else if (record.operation == event::ThreadEnded) {
        AppendEnded(place["threads"], {{"command", record.command}, {"thread", record.thread}}, record,
                    activity);
    } else if (record.operation == event::ResultMissing) {
        AppendTo(place["missing"], {{"command", record.command},
                                    {"property", JsonOf(record, argument::name)},
                                    {"data", JsonOf(record, argument::value)}});
    } else if (record.operation == event::WaitStarted) {
        Json wait = ObjectOf(record, {argument::waitsFor, argument::limit});
        wait["start"] = record.time;
        AppendTo(place["waits"], std::move(wait));
    } else if (record.operation == event::PromptClosed) {
        AppendPrompt(record, place);
    } else if (record.operation == event::StepRetried) {
        Json retry = ObjectOf(record, {argument::attempt, argument::reason});
        retry["time"] = record.time;
        AppendTo(place["retries"], std::move(retry));
    } else if (record.operation == event::StepTimedOut) {
        place["timedOut"] = JsonOf(record, argument::reason);
    } else if (record.operation == event::TransitionFollowed) {
        place["next"] = JsonOf(record, argument::to);
        EndPlace(running, record.time);
    }
}

void ResultReport::AppendPrompt(const Record& closed, Json& place) {
    const auto shown = m_prompts.find(closed.thread);
    if (shown == m_prompts.end())
        return;
    Json prompt =
        ObjectOf(shown->second, {argument::kind, argument::caption, argument::text, argument::buttons,
                                 argument::units, argument::limits, argument::data});
    prompt.update(ObjectOf(closed, {argument::answer, argument::by}));
    prompt["command"] = closed.command.empty() ? Json() : Json(closed.command);
    prompt["start"] = shown->second.time;
    prompt["duration"] = closed.time - shown->second.time;
    m_prompts.erase(shown);
    AppendTo(place["prompts"], std::move(prompt));
}

bool ResultReport::TakeEventOfProcedure(const Record& record, Json& result) {
    if (record.operation == event::TagGiven)
        result["tags"][record.Text(argument::name)] = JsonOf(record, argument::value);
    else if (record.operation == event::ParameterGiven)
        result["parameters"][record.Text(argument::id)] = ObjectOf(record, {argument::name, argument::units});
    else if (record.operation == event::DataLeft)
        result["data"][record.Text(argument::name)] = JsonOf(record, argument::value);
    else if (record.operation == event::Measured)
        result["measurements"].push_back(
            WithoutEmpty(ObjectOf(record, {argument::name, argument::data, argument::value, argument::units,
                                           argument::limits, argument::verdict, argument::at, argument::step,
                                           argument::description}),
                         {argument::units, argument::limits, argument::description}));
    else if (record.operation == event::ParameterLeft)
        result["left"].push_back(
            WithoutEmpty(ObjectOf(record, {argument::id, argument::name, argument::value, argument::was}),
                         {argument::name}));
    else
        return false;
    return true;
}

void ResultReport::EndProcedure(const Record& record) {
    Running& running = m_procedures.back();
    EndPlace(running, record.time);
    running.result["verdict"] = JsonOf(record, argument::verdict);
    running.result["reason"] = JsonOf(record, argument::reason);
    running.result["duration"] = record.time - running.began;
    if (m_procedures.size() == 1)
        return;
    Json result = std::move(running.result);
    m_procedures.pop_back();
    if (Json* const place = PlaceOf(m_procedures.back()))
        (*place)["procedure"] = std::move(result);
}

void ResultReport::AppendEnded(Json& list, Json entry, const Record& end, const Activity& activity) {
    if (!Keeps())
        return;
    entry["result"] = end.result ? Json(ToText(*end.result)) : Json();
    entry["meaning"] = end.result ? MeaningAsJson(*end.result) : Json();
    entry["start"] = activity.began;
    entry["duration"] = end.time - activity.began;
    entry["values"] = Json::array();
    for (const UsedValue& each : activity.values)
        AppendTo(entry["values"], EntryOf(each));
    entry["failedCalls"] = Json::array();
    for (const Activity::FailedCall& each : activity.failedCalls)
        AppendTo(entry["failedCalls"], EntryOf(each));
    Omit(activity.omitted);
    list.push_back(std::move(entry));
}

} // namespace vant::host
