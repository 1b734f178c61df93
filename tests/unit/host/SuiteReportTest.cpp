// What programs read of test cases: JSON and JUnit XML.

#include "host/suite/JUnit.h"
#include "host/suite/SuiteToJson.h"
#include "host/suite/Xml.h"

#include <gtest/gtest.h>

namespace vant::host {

namespace {

TestCase Named(const std::string& name, const std::string& file, std::uint32_t line) {
    TestCase named;
    named.name = name;
    named.file = file;
    named.position.line = line;
    named.procedure.text = "p.toml";
    return named;
}

const Json result = {
    {"verdict", "failed"},
    {"reason", "step 'bad'"},
    {"duration", 61'250},
    {"path", {"a", "bad"}},
    {"tags", {{"serial", "4711"}}},
    {"measurements",
     {{{"name", "drop"}, {"value", "3"}, {"units", "V"}, {"limits", nullptr}, {"verdict", "passed"}}}}};

const std::vector<TestCase> cases = {Named("right", "a.test.toml", 3), Named("1 < 2", "a.test.toml", 5),
                                     Named("crash", "b.test.toml", 1), Named("late", "b.test.toml", 9)};
const std::vector<CaseOutcome> outcomes = {
    {.status = CaseStatus::Passed, .result = result},
    {.status = CaseStatus::Failed,
     .mismatches = {{"verdict", "passed", "failed"}, {"ending", "good", "bad"}},
     .result = result},
    {.status = CaseStatus::Error, .failure = "the worker has ended with signal 11"},
    {}};

TEST(SuiteToJson, EveryCase_HasWhatCameOfIt) {
    const Json json = SuiteToJson(cases, outcomes);
    EXPECT_EQ(json["format"], 1);
    EXPECT_EQ(json["counts"].dump(), R"({"passed":1,"failed":1,"error":1,"not run":1})");
    ASSERT_EQ(json["cases"].size(), 4U);
    EXPECT_EQ(json["cases"][1]["mismatches"][1].dump(),
              R"({"what":"ending","expected":"good","came":"bad"})");
    EXPECT_EQ(json["cases"][1]["result"], result);
    EXPECT_EQ(
        json["cases"][2].dump(),
        R"({"name":"crash","file":"b.test.toml","line":1,"column":1,"procedure":"p.toml","engine":null,)"
        R"("status":"error","mismatches":[],"failure":"the worker has ended with signal 11",)"
        R"("result":null})");
}

TEST(JUnit, Cases_AreGroupedByFile) {
    const std::string properties = "    <properties>\n"
                                   "      <property name=\"serial\" value=\"4711\"/>\n"
                                   "      <property name=\"measurement drop\" value=\"3\"/>\n"
                                   "      <property name=\"verdict of drop\" value=\"passed\"/>\n"
                                   "      <property name=\"units of drop\" value=\"V\"/>\n"
                                   "    </properties>\n";
    EXPECT_EQ(
        ToJUnit(cases, outcomes),
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<testsuites name=\"vant test\" tests=\"4\" failures=\"1\" errors=\"1\" skipped=\"1\" "
        "time=\"122.500\">\n"
        "<testsuite name=\"a.test.toml\" tests=\"2\" failures=\"1\" errors=\"0\" skipped=\"0\" "
        "time=\"122.500\">\n"
        "  <testcase classname=\"a.test.toml\" name=\"right\" file=\"a.test.toml\" line=\"3\" "
        "time=\"61.250\">\n" +
            properties +
            "  </testcase>\n"
            "  <testcase classname=\"a.test.toml\" name=\"1 &lt; 2\" file=\"a.test.toml\" line=\"5\" "
            "time=\"61.250\">\n" +
            properties +
            "    <failure message=\"verdict: expected passed, but was failed\" type=\"verdict\">verdict: "
            "expected passed, but was failed&#10;ending: expected good, but was bad&#10;reason of the "
            "verdict: step 'bad'</failure>\n"
            "  </testcase>\n"
            "</testsuite>\n"
            "<testsuite name=\"b.test.toml\" tests=\"2\" failures=\"0\" errors=\"1\" skipped=\"1\" "
            "time=\"0.000\">\n"
            "  <testcase classname=\"b.test.toml\" name=\"crash\" file=\"b.test.toml\" line=\"1\" "
            "time=\"0.000\">\n"
            "    <error message=\"the worker has ended with signal 11\" type=\"error\">the worker has "
            "ended with signal 11</error>\n"
            "  </testcase>\n"
            "  <testcase classname=\"b.test.toml\" name=\"late\" file=\"b.test.toml\" line=\"9\" "
            "time=\"0.000\">\n"
            "    <skipped message=\"not run\"/>\n"
            "  </testcase>\n"
            "</testsuite>\n"
            "</testsuites>\n");
}

TEST(Xml, Text_KeepsWhatXmlAllowsAndReplacesTheRest) {
    EXPECT_EQ(ToXml("a & b < \"c\" > d\te\nf\r"), "a &amp; b &lt; &quot;c&quot; &gt; d&#9;e&#10;f&#13;");
    EXPECT_EQ(ToXml("Größe 😀"), "Größe 😀");
    EXPECT_EQ(ToXml(std::string("\0\x1B\x08", 3)), "\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(ToXml("\xEF\xBF\xBE\xEF\xBF\xBF\xC3(\xFF"), "\uFFFD\uFFFD\uFFFD(\uFFFD");
}

} // namespace

} // namespace vant::host
