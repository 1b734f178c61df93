#include "host/record/ResultReport.h"

#include "host/record/Vocabulary.h"

namespace vant::host {

ResultReport::ResultReport() {
    m_result["procedure"] = nullptr;
    m_result["verdict"] = nullptr;
    m_result["reason"] = nullptr;
    m_result["steps"] = Json::array();
    m_result["data"] = Json::object();
}

void ResultReport::operator()(const Record& record) {
    if (record.service == service::Runner)
        TakeEvent(record);
    else if (record.result && SUCCEEDED(*record.result) && m_stepIsKept)
        TakeCall(record);
}

bool ResultReport::Keeps() {
    if (m_entries < mostEntries) {
        ++m_entries;
        return true;
    }
    m_result["omitted"] = ++m_omitted;
    return false;
}

void ResultReport::TakeCall(const Record& record) {
    Json& step = m_result["steps"].back();
    if (record.operation == operation::ShowInstruction) {
        if (Keeps())
            step["instructions"].push_back(record.Text(argument::text));
    } else if (record.operation == operation::SetComponentProperty) {
        step["display"][record.Text(argument::componentId)][record.Text(argument::name)] =
            record.Text(argument::value);
    }
}

void ResultReport::TakeEvent(const Record& record) {
    const auto json = [&record](std::string_view name) {
        const Value* const value = record.Find(name);
        return value ? ToJson(*value) : Json();
    };
    Json& steps = m_result["steps"];
    if (record.operation == event::ProcedureStarted) {
        m_result["procedure"] = json(argument::name);
    } else if (record.operation == event::StepEntered) {
        m_stepIsKept = Keeps();
        if (!m_stepIsKept)
            return;
        Json step;
        step["step"] = json(argument::step);
        step["commands"] = Json::array();
        step["instructions"] = Json::array();
        step["display"] = Json::object();
        step["next"] = nullptr;
        steps.push_back(std::move(step));
    } else if (record.operation == event::CommandEnded) {
        if (!m_stepIsKept || !Keeps())
            return;
        Json command;
        command["command"] = record.command;
        command["class"] = json(argument::className);
        command["caller"] = json(argument::caller);
        command["phase"] = json(argument::phase);
        command["result"] = record.result ? Json(ToText(*record.result)) : Json();
        steps.back()["commands"].push_back(std::move(command));
    } else if (record.operation == event::TransitionFollowed) {
        if (m_stepIsKept)
            steps.back()["next"] = json(argument::to);
    } else if (record.operation == event::DataLeft) {
        m_result["data"][record.Text(argument::name)] = json(argument::value);
    } else if (record.operation == event::ProcedureEnded) {
        m_result["verdict"] = json(argument::verdict);
        m_result["reason"] = json(argument::reason);
    }
}

} // namespace vant::host
