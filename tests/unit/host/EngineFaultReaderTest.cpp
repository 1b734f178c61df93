#include "host/procedure/EngineReader.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

namespace vant::host {

namespace {

// The record of SaidOf begins in line 10.
constexpr std::string_view parameters = R"([parameters]
speed  = { value = 800 }
real   = { value = 1.5, min = 0, max = 10 }
fan    = { value = "OFF" }
ready  = { value = true, readOnly = true }
reads  = { value = 1, behaviour.sequence = [1, 2] }
timed  = { value = 1, behaviour = { sequence = [1, 2], every = 1 } }

[[faults."199000"]]
)";

/// All that is said about a record with these keys besides its fields, line by line.
std::string SaidOf(const std::string& keys) {
    Diagnostics found;
    ReadEngine(std::string(parameters) + keys + "\nfields = []\n", found);
    return found.Print("e");
}

TEST(EngineFaultReader, Records_AreReadAsTheyStand) {
    Diagnostics found;
    const EngineDescription read = ReadEngine(std::string(parameters) + R"(fields = []
from = "1min"
until = 90.5
[[faults."199000"]]
fields = [{ name = "199009", value = "Active" }]
when = { parameter = "speed", above = 3000, for = "2s" }
clearedBy = { parameter = "real", is = 1 }
[[faults."199000"]]
fields = []
when = { parameter = "fan", is = "ON", latched = false }
clearedBy = { parameter = "fan", is = "OFF" }
[[faults."199000"]]
fields = []
)",
                                              found);
    EXPECT_EQ(found.Print("e"), "");
    const auto& records = read.faultArrays.at("199000");
    ASSERT_EQ(records.size(), 4U);
    EXPECT_EQ(records[0].from, 60000);
    EXPECT_EQ(records[0].until, 90500);
    EXPECT_FALSE(records[0].when || records[0].clearedBy);
    EXPECT_TRUE(records[0].Changes());
    ASSERT_TRUE(records[1].when && records[1].clearedBy);
    EXPECT_EQ(records[1].fields.size(), 1U);
    EXPECT_EQ(records[1].from, 0);
    EXPECT_FALSE(records[1].until);
    EXPECT_EQ(records[1].when->parameter, "speed");
    EXPECT_EQ(records[1].when->relation, FaultCondition::Relation::Above);
    EXPECT_EQ(records[1].when->value, Value(3000.0));
    EXPECT_EQ(records[1].when->holdsFor, 2000);
    EXPECT_TRUE(records[1].when->latched);
    EXPECT_EQ(records[1].clearedBy->parameter, "real");
    EXPECT_EQ(records[1].clearedBy->value, Value(std::int64_t{1}));
    ASSERT_TRUE(records[2].when && records[2].clearedBy);
    EXPECT_EQ(records[2].when->relation, FaultCondition::Relation::Is);
    EXPECT_EQ(records[2].when->value, Value("ON"));
    EXPECT_EQ(records[2].when->holdsFor, 0);
    EXPECT_FALSE(records[2].when->latched);
    EXPECT_FALSE(records[3].Changes());
}

TEST(EngineFaultReader, EveryComparison_HasItsKey) {
    using enum FaultCondition::Relation;
    const std::pair<std::string, FaultCondition::Relation> all[] = {
        {"is", Is}, {"above", Above}, {"atLeast", AtLeast}, {"below", Below}, {"atMost", AtMost}};
    for (const auto& [key, relation] : all) {
        Diagnostics found;
        const EngineDescription read = ReadEngine(
            std::string(parameters) + "fields = []\nwhen = { parameter = 'timed', " + key + " = 2 }\n",
            found);
        EXPECT_EQ(found.Print("e"), "");
        EXPECT_EQ(read.faultArrays.at("199000").at(0).when->relation, relation) << key;
    }
}

TEST(EngineFaultReader, WrongPeriods_AreReported) {
    EXPECT_EQ(SaidOf("from = 2\nuntil = 2"), "e:11:9: error: 'until' must be later than 'from'\n");
    EXPECT_EQ(SaidOf("until = 0"), "e:10:9: error: 'until' must be later than the beginning\n");
    EXPECT_EQ(SaidOf("from = 'soon'"), "e:10:8: error: 'from' must be a number of seconds, or a text such as "
                                       "'250ms', '5s', '10min' or '1h', not 'soon'\n");
    EXPECT_EQ(SaidOf("form = 1"), "e:10:1: error: a fault record has no key 'form' (did you mean 'from'?)\n");
}

TEST(EngineFaultReader, WrongConditions_AreReported) {
    EXPECT_EQ(SaidOf("when = 1"), "e:10:8: error: 'when' must be a table, not a number\n");
    EXPECT_EQ(SaidOf("when = {}"),
              "e:10:8: error: 'parameter' is missing\n"
              "e:10:8: error: a comparison is missing: 'is', 'above', 'atLeast', 'below' or 'atMost'\n");
    EXPECT_EQ(SaidOf("when = { parameter = 'sped', above = 1, below = 2 }"),
              "e:10:8: error: the condition of a fault has one comparison\n"
              "e:10:22: error: there is no parameter 'sped' (did you mean 'speed'?)\n");
    EXPECT_EQ(SaidOf("when = { parameter = 'speed', abuve = 1, above = '1' }"),
              "e:10:31: error: the condition of a fault has no key 'abuve' (did you mean 'above'?)\n"
              "e:10:50: error: 'above' must be a number, not a string\n");
    EXPECT_EQ(SaidOf("when = { parameter = 'speed', is = '1', for = -1, latched = 0 }"),
              "e:10:36: error: 'is' must be of the same kind as the parameter's 'value', not a string\n"
              "e:10:47: error: 'for' must lie between 0 and 1000000000 seconds\n"
              "e:10:61: error: 'latched' must be true or false, not a number\n");
    EXPECT_EQ(SaidOf("when = { parameter = 'fan', atMost = 1 }"),
              "e:10:38: error: the value of the parameter is not a number: use 'is'\n");
    EXPECT_EQ(SaidOf("when = { parameter = 'reads', is = 1 }"),
              "e:10:22: error: 'reads' changes when it is read, so no fault can watch it: add 'every'\n");
}

TEST(EngineFaultReader, WrongClearings_AreReported) {
    EXPECT_EQ(SaidOf("clearedBy = 'speed'"), "e:10:13: error: 'clearedBy' must be a table, not a string\n");
    EXPECT_EQ(SaidOf("clearedBy = {}"), "e:10:13: error: 'parameter' is missing\n"
                                        "e:10:13: error: 'is' is missing\n");
    EXPECT_EQ(SaidOf("clearedBy = { parameter = 'sped', is = 1, above = 1 }"),
              "e:10:27: error: there is no parameter 'sped' (did you mean 'speed'?)\n"
              "e:10:43: error: 'clearedBy' has no key 'above'\n");
    EXPECT_EQ(SaidOf("clearedBy = { parameter = 'fan', is = 1 }"),
              "e:10:39: error: 'is' must be of the same kind as the parameter's 'value', not a number\n");
    EXPECT_EQ(SaidOf("clearedBy = { parameter = 'ready', is = true }"),
              "e:10:27: error: 'ready' refuses writes, so none can clear the record\n");
    EXPECT_EQ(SaidOf("clearedBy = { parameter = 'timed', is = 1 }"),
              "e:10:27: error: 'timed' refuses writes, so none can clear the record\n");
    EXPECT_EQ(SaidOf("clearedBy = { parameter = 'real', is = 11 }"),
              "e:10:40: error: 'is' lies outside 'min' and 'max' of 'real': it cannot be written\n");
    EXPECT_EQ(SaidOf("clearedBy = { parameter = 'speed', is = 1.5 }"),
              "e:10:41: error: 'is' must be a whole number, as the value of 'speed'\n");
    EXPECT_EQ(SaidOf("clearedBy = { parameter = 'speed', is = inf }"),
              "e:10:41: error: 'is' must be a finite number\n");
}

} // namespace

} // namespace vant::host
