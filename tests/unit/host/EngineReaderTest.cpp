#include "host/procedure/EngineReader.h"

#include "host/procedure/ProcedureReader.h"

#include <gtest/gtest.h>

namespace vant::host {

namespace {

std::string Text(const Diagnostics& found) {
    std::string result;
    for (const Diagnostic& each : found.Sorted())
        result += each.Text("e") + '\n';
    return result;
}

/// All that is said about an engine's text, line by line.
std::string Said(std::string_view toml) {
    Diagnostics found;
    ReadEngine(toml, found);
    return Text(found);
}

/// The same about a procedure without other mistakes and with `more` at its end.
std::string SaidOfProcedure(const std::string& more, Procedure* read = nullptr) {
    Diagnostics found;
    Procedure procedure =
        ReadProcedure("name = 'n'\nstart = 'done'\nsteps.done.end = 'passed'\n" + more, found);
    if (read)
        *read = std::move(procedure);
    return Text(found);
}

TEST(EngineReader, WholeEngine_IsReadAsItStands) {
    Diagnostics found;
    const EngineDescription read = ReadEngine(R"(connection = "12"
protocol = 6
protocolFails = "GetB"
[parameters."101000"]
name = "Engine speed"
value = 800
text = "idle"
units = "rpm"
readOnly = true
fails = true
min = -5
max = 3000.5
[parameters.other]
value = 1.5
[parameters.truth]
value = false
[units]
rpm = "1/min"
[faults]
empty = []
[[faults."199000"]]
fields = [{ name = "199009", value = "Active" }, { name = "199009", value = "Inactive" }]
[[faults."199000"]]
fields = []
)",
                                              found);
    EXPECT_EQ(Text(found), "");
    EXPECT_EQ(read.connection, "12");
    EXPECT_EQ(read.protocol, 6);
    EXPECT_EQ(read.protocolFails, ProtocolStep::GetB);
    ASSERT_EQ(read.parameters.size(), 3U);
    const EngineParameter& speed = read.parameters.at("101000");
    EXPECT_EQ(speed.name, "Engine speed");
    EXPECT_EQ(speed.value, Value(std::int64_t{800}));
    EXPECT_EQ(speed.text, "idle");
    EXPECT_EQ(speed.unitsKey, "rpm");
    EXPECT_TRUE(speed.readOnly);
    EXPECT_TRUE(speed.fails);
    EXPECT_EQ(speed.min, -5.0);
    EXPECT_EQ(speed.max, 3000.5);
    const EngineParameter& other = read.parameters.at("other");
    EXPECT_EQ(other.value, Value(1.5));
    EXPECT_EQ(other.text, std::nullopt);
    EXPECT_FALSE(other.readOnly);
    EXPECT_FALSE(other.fails);
    EXPECT_EQ(other.min, std::nullopt);
    EXPECT_EQ(read.parameters.at("truth").value, Value(false));
    EXPECT_EQ(read.units, (std::map<std::string, std::string>{{"rpm", "1/min"}}));
    EXPECT_TRUE(read.faultArrays.at("empty").empty());
    const auto& records = read.faultArrays.at("199000");
    ASSERT_EQ(records.size(), 2U);
    ASSERT_EQ(records[0].fields.size(), 2U);
    EXPECT_EQ(records[0].fields[1].name, "199009");
    EXPECT_EQ(records[0].fields[1].value, "Inactive");
    EXPECT_TRUE(records[1].fields.empty());
}

TEST(EngineReader, EmptyEngine_HasConnection1AndKind0) {
    Diagnostics found;
    const EngineDescription read = ReadEngine("", found);
    EXPECT_EQ(Text(found), "");
    EXPECT_EQ(read.connection, "1");
    EXPECT_EQ(read.protocol, 0);
    EXPECT_EQ(read.protocolFails, std::nullopt);
}

TEST(EngineReader, UnknownKeys_AreReportedWithSuggestions) {
    EXPECT_EQ(Said("conection = '1'\n"),
              "e:1:1: error: an engine has no key 'conection' (did you mean 'connection'?)\n");
    EXPECT_EQ(Said("[parameters.a]\nvalue = 1\nreadonly = true\n"),
              "e:3:1: error: a parameter has no key 'readonly' (did you mean 'readOnly'?)\n");
    EXPECT_EQ(Said("[[faults.a]]\nfields = []\nfeilds = []\n"),
              "e:3:1: error: a fault record has no key 'feilds' (did you mean 'fields'?)\n");
}

TEST(EngineReader, ProtocolOutsideTheKinds_IsReported) {
    EXPECT_EQ(Said("protocol = 7"), "e:1:12: error: 'protocol' must be a whole number from 0 to 6\n");
    EXPECT_EQ(Said("protocol = -1"), "e:1:12: error: 'protocol' must be a whole number from 0 to 6\n");
    EXPECT_EQ(Said("protocol = '4'"), "e:1:12: error: 'protocol' must be a whole number from 0 to 6\n");
}

TEST(EngineReader, EveryProtocolStep_HasItsName) {
    const char* const names[] = {"GetProtocolSource", "GetA", "GetB", "GetC", "GetD", "get_Kind"};
    for (int step = 0; step < 6; ++step) {
        Diagnostics found;
        const EngineDescription read =
            ReadEngine("protocolFails = '" + std::string(names[step]) + "'", found);
        EXPECT_EQ(read.protocolFails, static_cast<ProtocolStep>(step));
    }
    EXPECT_EQ(Said("protocolFails = 'get_kind'"),
              "e:1:17: error: there is no protocol step 'get_kind' (did you mean 'get_Kind'?)\n");
}

TEST(EngineReader, ParameterWithoutValue_IsReported) {
    EXPECT_EQ(Said("[parameters.a]\nname = 'A'\n"), "e:1:13: error: 'value' is missing\n");
}

TEST(EngineReader, WholeNumberBeyond32Bits_IsReported) {
    EXPECT_EQ(Said("[parameters.a]\nvalue = 3000000000\n"),
              "e:2:9: error: a whole number must lie between -2147483648 and 2147483647; write it in quotes "
              "to keep it as text\n");
}

TEST(EngineReader, WrongLimits_AreReported) {
    EXPECT_EQ(Said("[parameters.a]\nvalue = 1\nmin = 2\n"),
              "e:2:9: error: 'value' lies outside 'min' and 'max'\n");
    EXPECT_EQ(Said("[parameters.a]\nvalue = 1\nmin = 3\nmax = 2\n"),
              "e:4:7: error: 'max' is less than 'min'\n");
    EXPECT_EQ(Said("[parameters.a]\nvalue = '1'\nmin = 2\n"),
              "e:3:7: error: only a parameter whose value is a number has limits\n");
    EXPECT_EQ(Said("[parameters.a]\nvalue = 1\nmin = '2'\n"),
              "e:3:7: error: 'min' must be a number, not a string\n");
}

TEST(EngineReader, WrongTypes_AreReported) {
    EXPECT_EQ(Said("parameters.a = 1"), "e:1:16: error: parameter 'a' must be a table, not a number\n");
    EXPECT_EQ(Said("[parameters.a]\nvalue = 1\nfails = 'no'\n"),
              "e:3:9: error: 'fails' must be true, false or a table with 'from' or 'read', not a string\n");
    EXPECT_EQ(Said("units.rpm = 1"),
              "e:1:13: error: unit 'rpm' must be a string, not a number: write it in quotes\n");
    EXPECT_EQ(Said("faults.a = 1"),
              "e:1:12: error: fault array 'a' must be a list of records, not a number\n");
    EXPECT_EQ(Said("faults.a = [1]"), "e:1:13: error: a fault record must be a table, not a number\n");
    EXPECT_EQ(Said("faults.a = [{}]"), "e:1:13: error: 'fields' is missing\n");
    EXPECT_EQ(Said("faults.a = [{ fields = 1 }]"),
              "e:1:24: error: 'fields' must be a list of fields, not a number\n");
    EXPECT_EQ(Said("faults.a = [{ fields = [{ name = 'n' }] }]"), "e:1:25: error: 'value' is missing\n");
}

TEST(EngineReader, WrongSyntax_IsReported) {
    Diagnostics found;
    ReadEngine("[parameters\n", found);
    ASSERT_EQ(found.Sorted().size(), 1U);
    EXPECT_EQ(found.Sorted()[0].position.line, 1U);
}

TEST(EngineReader, EngineInAProcedure_IsReportedWithThePositionsOfTheProcedure) {
    EXPECT_EQ(SaidOfProcedure("[engine]\nprotocol = 9\n"),
              "e:5:12: error: 'protocol' must be a whole number from 0 to 6\n");
    EXPECT_EQ(SaidOfProcedure("engine = 1\n"),
              "e:4:10: error: 'engine' must be a table or the name of a file, not a number\n");
}

TEST(EngineReader, EngineFileOfAProcedure_IsNamedNotRead) {
    Procedure procedure;
    EXPECT_EQ(SaidOfProcedure("engine = 'idle.toml'\n", &procedure), "");
    ASSERT_TRUE(procedure.engineFile);
    EXPECT_EQ(procedure.engineFile->text, "idle.toml");
    EXPECT_EQ(procedure.engineFile->position.line, 4U);
    EXPECT_EQ(procedure.engineFile->position.column, 10U);
    EXPECT_EQ(procedure.engine.has_value(), false);
}

TEST(EngineReader, Components_HaveTheListedPropertiesOrAll) {
    Procedure procedure;
    EXPECT_EQ(SaidOfProcedure("[components.gauge]\nproperties = ['text', 'value']\n[components.lamp]\n",
                              &procedure),
              "");
    EXPECT_EQ(procedure.components, (Components{{"gauge", {"text", "value"}}, {"lamp", {}}}));
}

TEST(EngineReader, WrongComponents_AreReported) {
    EXPECT_EQ(SaidOfProcedure("[components.gauge]\npropertys = []\n"),
              "e:5:1: error: a component has no key 'propertys' (did you mean 'properties'?)\n");
    EXPECT_EQ(SaidOfProcedure("components.gauge.properties = 'text'\n"),
              "e:4:31: error: 'properties' must be a list of property names, not a string\n");
    EXPECT_EQ(SaidOfProcedure("components.gauge.properties = []\n"),
              "e:4:31: error: 'properties' must be a list of property names, not an empty one; leave it out "
              "if the component accepts every property\n");
    EXPECT_EQ(SaidOfProcedure("components.gauge.properties = [1]\n"),
              "e:4:32: error: a property name must be a string, not a number: write it in quotes\n");
}

} // namespace

} // namespace vant::host
