#include "host/record/Json.h"

#include <cmath>
#include <cstdint>
#include <fmt/format.h>

namespace vant::host {

namespace {

struct JsonMaker {
    Json operator()(double number) const {
        if (std::isnan(number))
            return "NaN";
        if (std::isinf(number))
            return number > 0 ? "Infinity" : "-Infinity";
        return number;
    }
    template <class Other>
    Json operator()(const Other& value) const {
        return value;
    }
};

} // namespace

Json ToJson(const Value& value) {
    return std::visit(JsonMaker{}, value);
}

Value ToValue(const Json& json) {
    if (json.is_boolean())
        return json.get<bool>();
    if (json.is_number_integer())
        return json.get<std::int64_t>();
    if (json.is_number())
        return json.get<double>();
    if (json.is_string())
        return json.get<std::string>();
    return nullptr;
}

std::string ToText(HRESULT code) {
    return fmt::format("0x{:08X}", static_cast<std::uint32_t>(code));
}

Json ToJson(const Record& record) {
    Json arguments = Json::object();
    for (const Argument& argument : record.arguments)
        arguments[argument.name] = ToJson(argument.value);
    Json result;
    result["time"] = record.time;
    result["thread"] = record.thread;
    result["command"] = record.command.empty() ? Json() : Json(record.command);
    result["service"] = record.service;
    result["operation"] = record.operation;
    result["arguments"] = std::move(arguments);
    result["result"] = record.result ? Json(ToText(*record.result)) : Json();
    return result;
}

} // namespace vant::host
