// docs/result.schema.json against the results that runs have printed.

#include "tests/docs/JsonSchema.h"
#include "tests/docs/Markdown.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <set>
#include <stdexcept>
#include <string>

namespace vant::test {

using Json = nlohmann::json;

namespace {

Json Schema() {
    return Json::parse(ReadProjectFile("docs/result.schema.json"));
}

Json ResultOf(const std::string& run) {
    return Json::parse(ReadProjectFile("tests/procedures/expected/" + run + ".out"));
}

/// A valid result with a called procedure, and a change to it that must be found at that path.
template <class Change>
void ExpectViolation(const std::string& path, Change change) {
    Json result = ResultOf("limits_json");
    change(result);
    const auto found = ViolationsOf(Schema(), result);
    ASSERT_FALSE(found.empty()) << path;
    bool isFound = false;
    for (const std::string& each : found)
        isFound = isFound || each.starts_with(path + ": ");
    EXPECT_TRUE(isFound) << path << " but " << found.front();
}

/// Every property that the schema names anywhere.
void CollectProperties(const Json& schema, std::set<std::string>& names) {
    if (schema.is_object() && schema.contains("properties") && schema["properties"].is_object()) {
        for (const auto& [name, each] : schema["properties"].items())
            names.insert(name);
    }
    if (schema.is_structured()) {
        for (const Json& each : schema)
            CollectProperties(each, names);
    }
}

TEST(ResultSchema, PrintedResults_AreValid) {
    std::size_t results = 0;
    for (const auto& entry : std::filesystem::directory_iterator("tests/procedures/expected")) {
        const std::string name = entry.path().stem().string();
        if (entry.path().extension() != ".out" || !name.ends_with("_json") || name.starts_with("classes_") ||
            name.starts_with("check_"))
            continue;
        ++results;
        for (const std::string& each : ViolationsOf(Schema(), ResultOf(name)))
            ADD_FAILURE() << name << ' ' << each;
    }
    EXPECT_GE(results, 4U);
}

TEST(ResultSchema, Violations_AreFound) {
    ExpectViolation("/", [](Json& result) { result.erase("format"); });
    ExpectViolation("/format", [](Json& result) { result["format"] = 2; });
    ExpectViolation("/more", [](Json& result) { result["more"] = 1; });
    ExpectViolation("/verdict", [](Json& result) { result["verdict"] = "perhaps"; });
    ExpectViolation("/duration", [](Json& result) { result["duration"] = -1; });
    ExpectViolation("/duration", [](Json& result) { result["duration"] = 1.5; });
    ExpectViolation("/data/heat", [](Json& result) { result["data"]["heat"] = Json::object(); });
    ExpectViolation("/steps/0/next", [](Json& result) { result["steps"][0]["next"] = 1; });
    ExpectViolation("/steps/0/commands/0/result",
                    [](Json& result) { result["steps"][0]["commands"][0]["result"] = "S_OK"; });
    ExpectViolation("/steps/4/procedure/steps/0/commands/0", [](Json& result) {
        result["steps"][4]["procedure"]["steps"][0]["commands"][0].erase("class");
    });
}

TEST(ResultSchema, KeywordThatTheCheckLacks_IsAFailureOfTheTest) {
    EXPECT_THROW(ViolationsOf({{"maxItems", 1}}, Json::array()), std::runtime_error);
}

TEST(ResultSchema, Properties_AreInTheDocument) {
    std::set<std::string> names;
    CollectProperties(Schema(), names);
    EXPECT_GT(names.size(), 40U);
    const std::string document = ReadProjectFile("docs/procedures.md");
    for (const std::string& name : names)
        EXPECT_NE(document.find("`" + name + "`"), std::string::npos) << name;
}

} // namespace

} // namespace vant::test
