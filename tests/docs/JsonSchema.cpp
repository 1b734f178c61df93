#include "tests/docs/JsonSchema.h"

#include <algorithm>
#include <regex>
#include <stdexcept>

namespace vant::test {

namespace {

using Json = nlohmann::json;

bool HasType(const Json& value, const std::string& type) {
    if (type == "integer")
        return value.is_number_integer();
    return type == value.type_name();
}

class Validator {
public:
    explicit Validator(const Json& root) : m_root(root) {}

    void Check(const Json& schema, const Json& value, const std::string& path) {
        if (schema.is_boolean()) {
            if (!schema.get<bool>())
                Report(path, "is not allowed");
            return;
        }
        for (const auto& [keyword, argument] : schema.items())
            CheckKeyword(keyword, argument, schema, value, path);
    }
    std::vector<std::string> Found() && { return std::move(m_found); }

private:
    void Report(const std::string& path, const std::string& message) {
        m_found.push_back((path.empty() ? "/" : path) + ": " + message);
    }

    void CheckKeyword(const std::string& keyword, const Json& argument, const Json& schema, const Json& value,
                      const std::string& path) {
        if (keyword == "$ref")
            Check(m_root.at(Json::json_pointer(argument.get<std::string>().substr(1))), value, path);
        else if (keyword == "allOf")
            std::for_each(argument.begin(), argument.end(),
                          [&](const Json& each) { Check(each, value, path); });
        else if (keyword == "anyOf")
            CheckAny(argument, value, path);
        else if (keyword == "type")
            CheckType(argument, value, path);
        else if (keyword == "const")
            Require(value == argument, path, "must be " + argument.dump());
        else if (keyword == "enum")
            Require(std::find(argument.begin(), argument.end(), value) != argument.end(), path,
                    "must be one of " + argument.dump());
        else if (keyword == "pattern")
            Require(!value.is_string() ||
                        std::regex_search(value.get<std::string>(), std::regex(argument.get<std::string>())),
                    path, "must match " + argument.dump());
        else if (keyword == "minimum")
            Require(!value.is_number() || value >= argument, path, "must be at least " + argument.dump());
        else if (keyword == "required")
            CheckRequired(argument, value, path);
        else if (keyword == "properties" || keyword == "additionalProperties")
            CheckProperties(keyword, argument, schema, value, path);
        else if (keyword == "items")
            CheckItems(argument, value, path);
        else if (keyword != "$schema" && keyword != "$defs" && keyword != "title" && keyword != "description")
            throw std::runtime_error("the keyword " + keyword + " is not known");
    }

    void Require(bool holds, const std::string& path, const std::string& message) {
        if (!holds)
            Report(path, message);
    }

    void CheckAny(const Json& schemas, const Json& value, const std::string& path) {
        std::vector<std::string> found;
        for (const Json& each : schemas) {
            Validator one(m_root);
            one.Check(each, value, path);
            if (one.m_found.empty())
                return;
            found.insert(found.end(), one.m_found.begin(), one.m_found.end());
        }
        Report(path, "satisfies none of the schemas");
        m_found.insert(m_found.end(), found.begin(), found.end());
    }

    void CheckType(const Json& type, const Json& value, const std::string& path) {
        const Json types = type.is_array() ? type : Json::array({type});
        Require(std::any_of(types.begin(), types.end(),
                            [&value](const Json& each) { return HasType(value, each.get<std::string>()); }),
                path, "must be of type " + type.dump());
    }

    void CheckRequired(const Json& names, const Json& value, const std::string& path) {
        for (const Json& name : names)
            Require(!value.is_object() || value.contains(name.get<std::string>()), path,
                    "lacks " + name.dump());
    }

    void CheckProperties(const std::string& keyword, const Json& argument, const Json& schema,
                         const Json& value, const std::string& path) {
        if (!value.is_object())
            return;
        for (const auto& [name, each] : value.items()) {
            const bool isListed = schema.contains("properties") && schema["properties"].contains(name);
            if (isListed && keyword == "properties")
                Check(argument[name], each, path + '/' + name);
            else if (!isListed && keyword == "additionalProperties")
                Check(argument, each, path + '/' + name);
        }
    }

    void CheckItems(const Json& schema, const Json& value, const std::string& path) {
        for (std::size_t i = 0; value.is_array() && i < value.size(); ++i)
            Check(schema, value[i], path + '/' + std::to_string(i));
    }

    const Json& m_root;
    std::vector<std::string> m_found;
};

} // namespace

std::vector<std::string> ViolationsOf(const nlohmann::json& schema, const nlohmann::json& document) {
    Validator validator(schema);
    validator.Check(schema, document, "");
    return std::move(validator).Found();
}

} // namespace vant::test
