// Large engines and long times: a reading must not take long.

#include "host/engine/objects/EngineAccess.h"
#include "host/procedure/EngineReader.h"

#include <cstdint>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace vant::host {

namespace {

EngineParameter Follower(std::vector<std::string> followed) {
    EngineParameter parameter;
    parameter.value = 0.0;
    parameter.behaviour.emplace().follows = std::move(followed);
    return parameter;
}

Value ValueOf(Engine& engine, const std::string& id) {
    return std::get<Reading>(engine.Read(id)).value;
}

TEST(EngineOfManyParameters, LevelsThatFollowTwoEach_AreReadInTime) {
    std::map<std::string, EngineParameter> parameters;
    parameters["a0"].value = parameters["b0"].value = 2.0;
    for (int level = 1; level <= 60; ++level) {
        const std::vector<std::string> below = {fmt::format("a{}", level - 1), fmt::format("b{}", level - 1)};
        parameters[fmt::format("a{}", level)] = Follower(below);
        EngineParameter& lagging = parameters[fmt::format("b{}", level)] = Follower(below);
        lagging.behaviour->lag = 1;
    }
    Engine engine(parameters, 0, [] { return 1000; });
    EXPECT_EQ(ValueOf(engine, "a60"), Value(2.0));
}

TEST(EngineOfManyParameters, SumsOfSums_AreReadInTime) {
    std::map<std::string, EngineParameter> parameters;
    parameters["0"].value = 1.0;
    for (int i = 1; i <= 60; ++i) {
        EngineParameter& parameter = parameters[std::to_string(i)] = Follower({});
        const std::string before = std::to_string(i - 1);
        parameter.behaviour->sum = {{before, 0.5, 0}, {"0", 0, 1}, {before, 0.5, 0}};
    }
    Engine engine(parameters, 0, [] { return 1000; });
    EXPECT_EQ(ValueOf(engine, "60"), Value(61.0));
}

TEST(EngineOfManyParameters, SumOfAll_IsReadInTime) {
    constexpr int length = 30000;
    std::map<std::string, EngineParameter> parameters;
    parameters["0"].value = 1.0;
    parameters["sum"] = Follower({});
    for (int i = 1; i < length; ++i) {
        parameters[std::to_string(i)] = Follower({std::to_string(i - 1)});
        parameters["sum"].behaviour->sum.push_back({std::to_string(i), 1, 0});
    }
    Engine engine(parameters, 0, [] { return 1000; });
    EXPECT_EQ(ValueOf(engine, "sum"), Value(length - 1.0));
}

TEST(EngineOfManyParameters, LongChain_IsReadInTime) {
    constexpr int length = 30000;
    std::map<std::string, EngineParameter> parameters;
    parameters["0"].value = 2.0;
    for (int i = 1; i < length; ++i) {
        EngineParameter& parameter = parameters[std::to_string(i)] = Follower({std::to_string(i - 1)});
        if (i % 100 == 0)
            parameter.behaviour->lag = 0.5;
    }
    std::int64_t now = 0;
    Engine engine(parameters, 0, [&now] { return now; });
    EXPECT_EQ(ValueOf(engine, std::to_string(length - 1)), Value(0.0));
    EXPECT_EQ(ValueOf(engine, "99"), Value(2.0));
    EXPECT_FALSE(engine.Write("0", 3.0).has_value());
    now = 50;
    EXPECT_EQ(ValueOf(engine, "99"), Value(3.0));
}

TEST(EngineOfManyParameters, ChainOfDelaysThatMoves_IsReadInTime) {
    std::string toml = "[parameters]\np0 = { value = 0.0, behaviour = { towards = 1, lag = 10 } }\n";
    for (int i = 1; i <= 100; ++i)
        toml += fmt::format("p{} = {{ value = 0.0, behaviour = {{ follows = 'p{}', delay = 0.{:02} }} }}\n",
                            i, i - 1, i % 10 + 1);
    Diagnostics found;
    const EngineDescription description = ReadEngine(toml, found);
    EXPECT_EQ(found.Print("e"), "");
    std::int64_t now = 0;
    Engine engine(description.parameters, 0, [&now] { return now; });
    now = 100000;
    EXPECT_GT(NumberIn(ValueOf(engine, "p100")), 0.99);
}

TEST(EngineOverManyHours, InputThatNoLongerMoves_CostsNothing) {
    EngineParameter ramped;
    ramped.value = 0.0;
    ramped.behaviour.emplace().ramp = Ramp{0, 100, 0, 1003};
    std::map<std::string, EngineParameter> parameters = {{"ramp", ramped}, {"lagging", Follower({"ramp"})}};
    parameters["lagging"].behaviour->lag = 2;
    std::int64_t now = 0;
    Engine engine(parameters, 0, [&now] { return now; });
    now = 1010; // The ramp has ended between two of the steps at which inputs are taken.
    engine.Read("lagging");
    now = 300'000'000'000; // Ten years.
    EXPECT_EQ(ValueOf(engine, "lagging"), Value(100.0));
}

} // namespace

} // namespace vant::host
