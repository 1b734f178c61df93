#include "host/record/ResultReport.h"

namespace vant::host {

ResultReport::ResultReport() {
    m_result["procedure"] = nullptr;
    m_result["verdict"] = nullptr;
    m_result["reason"] = nullptr;
    m_result["steps"] = Json::array();
    m_result["data"] = Json::object();
}

void ResultReport::operator()(const Record& record) {
    if (record.service == "Runner")
        TakeEvent(record);
    else if (record.result && SUCCEEDED(*record.result) && !m_result["steps"].empty())
        TakeCall(record);
}

void ResultReport::TakeCall(const Record& record) {
    Json& step = m_result["steps"].back();
    if (record.operation == "ShowInstruction")
        step["instructions"].push_back(record.Text("text"));
    else if (record.operation == "SetComponentProperty")
        step["display"][record.Text("componentId")][record.Text("name")] = record.Text("value");
}

void ResultReport::TakeEvent(const Record& record) {
    const auto argument = [&record](std::string_view name) {
        const Value* const value = record.Find(name);
        return value ? ToJson(*value) : Json();
    };
    Json& steps = m_result["steps"];
    if (record.operation == "ProcedureStarted") {
        m_result["procedure"] = argument("name");
    } else if (record.operation == "StepEntered") {
        Json step;
        step["step"] = argument("step");
        step["commands"] = Json::array();
        step["instructions"] = Json::array();
        step["display"] = Json::object();
        step["next"] = nullptr;
        steps.push_back(std::move(step));
    } else if (record.operation == "CommandEnded") {
        Json command;
        command["command"] = record.command;
        command["class"] = argument("class");
        command["caller"] = argument("caller");
        command["phase"] = argument("phase");
        command["result"] = record.result ? Json(ToText(*record.result)) : Json();
        steps.back()["commands"].push_back(std::move(command));
    } else if (record.operation == "TransitionFollowed") {
        steps.back()["next"] = argument("to");
    } else if (record.operation == "DataLeft") {
        m_result["data"][record.Text("name")] = argument("value");
    } else if (record.operation == "ProcedureEnded") {
        m_result["verdict"] = argument("verdict");
        m_result["reason"] = argument("reason");
    }
}

} // namespace vant::host
