#include "host/suite/CaseSetup.h"

namespace vant::host {

namespace {

/// The failures of these commands and operations are expected in every step, also of called procedures.
void AllowFailures(Procedure& procedure, const std::vector<std::string>& mayFail) {
    if (mayFail.empty())
        return;
    for (auto& [id, step] : procedure.steps) {
        for (const std::string& each : mayFail)
            step.mayFail.push_back({each, {}});
        if (!step.procedure)
            continue;
        auto called = std::make_shared<Procedure>(*step.procedure->procedure);
        AllowFailures(*called, mayFail);
        step.procedure->procedure = std::move(called);
    }
}

} // namespace

Procedure SetUp(const Procedure& procedure, const CaseSetup& setup) {
    Procedure result = procedure;
    for (const auto& [name, value] : setup.data)
        result.data.insert_or_assign(name, value);
    AllowFailures(result, setup.mayFail);
    if (!result.engine)
        return result;
    if (setup.seed)
        result.engine->seed = static_cast<std::uint64_t>(*setup.seed);
    for (const auto& [id, value] : setup.parameters) {
        EngineParameter& parameter = result.engine->parameters.at(id);
        parameter.value = AsValueOf(parameter, value).value_or(value);
        parameter.text.reset();
    }
    return result;
}

std::optional<Value> AsValueOf(const EngineParameter& parameter, const Value& given) {
    if (parameter.value.index() == given.index())
        return given;
    if (std::holds_alternative<double>(parameter.value) && std::holds_alternative<std::int64_t>(given))
        return static_cast<double>(std::get<std::int64_t>(given));
    return std::nullopt;
}

const char* TypeNameOf(const Value& value) {
    if (std::holds_alternative<bool>(value))
        return "true or false";
    if (std::holds_alternative<std::int64_t>(value))
        return "a whole number";
    return std::holds_alternative<double>(value) ? "a number" : "a string";
}

} // namespace vant::host
