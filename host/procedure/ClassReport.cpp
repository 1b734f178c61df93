#include "host/procedure/ClassReport.h"

#include "framework/interfaces/ClassIds.h"
#include "framework/interfaces/ClassProperties.h"
#include "platform/Utf8.h"

#include <algorithm>
#include <fmt/format.h>
#include <utility>

namespace vant::host {

std::vector<std::string> WordsOf(std::string_view words) {
    std::vector<std::string> list;
    while (!words.empty()) {
        const std::size_t end = std::min(words.find(' '), words.size());
        list.emplace_back(words.substr(0, end));
        words.remove_prefix(std::min(end + 1, words.size()));
    }
    return list;
}

std::vector<std::string> ClassNames() {
    std::vector<std::string> names;
    for (const ClassRow& row : classTable)
        names.push_back(ToUtf8(row.name));
    return names;
}

std::string KindOfProperty(const std::string& className, const std::string& name) {
    const ClassProperty* const property = FindClassProperty(className, name);
    return property ? std::string(KindText(property->kind)) : std::string();
}

std::string DescribeClass(const std::string& name) {
    std::string text = name + '\n';
    for (const ClassProperty& each : PropertiesOfClass(name)) {
        std::string need = each.required ? "required" : "optional";
        if (!each.alternative.empty())
            need += fmt::format(", or {}", each.alternative);
        text += fmt::format("  {} ({}; {})\n      {}\n", each.name, need, DescribeKind(each), each.meaning);
    }
    return text;
}

Json ClassToJson(const std::string& name) {
    Json properties = Json::array();
    for (const ClassProperty& each : PropertiesOfClass(name)) {
        Json property;
        property["name"] = each.name;
        property["alternative"] = each.alternative.empty() ? Json() : Json(each.alternative);
        property["required"] = each.required;
        property["kind"] = KindText(each.kind);
        property["holds"] = each.holds == each.kind ? Json() : Json(KindText(each.holds));
        property["words"] = WordsOf(each.words);
        property["meaning"] = each.meaning;
        properties.push_back(std::move(property));
    }
    return {{"class", name}, {"properties", std::move(properties)}};
}

} // namespace vant::host
